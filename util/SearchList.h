// qzSearchList: the files whose names match, in a list of directories.
//
// An array of paths, each a directory of the list, one slash and a name. They
// come in the order of the directories and within one as the system lists them;
// "." and ".." are names like any other, and a name found in two directories is
// listed for each. A directory that cannot be read adds nothing.
//
// Deliberate: the directory stays as it stands in the list, so that "d/" gives
// "d//name"; callers find it again at the front of each path. Pinned by
// qzSearchList.PutsOneSlashAfterTheDirectoryAsItStands.
//
// Deliberate: a name is taken when the first match of the expression in it is
// the whole name. "a|ab" so does not take "ab", of which it first matches "a";
// callers write the longer alternative first. Pinned by
// qzSearchList.FirstMatchMustBeTheWholeName.
//
// Units: a search list is directories separated by colons.
// Trusted: nothing; null is the empty string.
// Errors: none are reported. A malformed expression matches no name.
// Cost: a change reads every directory of the list, on the calling thread.
#ifndef QZ_UTIL_SEARCHLIST_H
#define QZ_UTIL_SEARCHLIST_H

#include "util/StrArray.h"

class qzRegEx;

class QZ_EXPORT qzSearchList : public qzStrArray {
  public:
    qzSearchList(const char* searchList, const char* regexp);
    ~qzSearchList() override;

    // Deliberate: setting what is set already does not look at the directories
    // again. Callers set the list before each use and pay only for changes.
    // Pinned by qzSearchList.ReadsTheDirectoriesOnlyForAChange.
    void searchList(const char* searchList);
    void regexp(const char* regexp);
    void searchCriteria(const char* searchList, const char* regexp);

  private:
    void recompute();
    void appendMatches(const qzStr& directory, const qzRegEx& pattern);

    qzStr expression;
    qzStr directories;
};

static_assert(sizeof(void*) != 4 || sizeof(qzSearchList) == 40, "callers embed search lists");

#endif

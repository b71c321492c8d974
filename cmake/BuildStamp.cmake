# What util/VersionStamp.cxx says about this build. The time is that of
# configuring, or SOURCE_DATE_EPOCH where that is set: builds of the same
# sources are then the same.
string(TIMESTAMP build_stamp "%Y-%m-%d %H:%M:%S UTC" UTC)
set_source_files_properties(util/VersionStamp.cxx PROPERTIES COMPILE_DEFINITIONS
    "QZ_VERSION=\"${PROJECT_VERSION}\";QZ_BUILD_STAMP=\"${build_stamp}\"")

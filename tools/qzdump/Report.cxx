#include "tools/qzdump/Report.h"

#include <cstdio>

namespace qzdump {

Report::~Report() = default;

void Report::print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

} // namespace qzdump

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace lumiran {
class PlatformDecoder;
}

namespace lumiran::cli {

// Exit codes of the command line tool.
constexpr int ExitOk = 0;
constexpr int ExitFailed = 1; // the effect failed or a save was refused
constexpr int ExitUsage = 2;  // bad arguments or unreadable input

// Runs the tool on the arguments after the program name; pictures in the
// platform's formats are read through the decoder. A batch shows a
// progress line a picture on err when showProgress (err is a terminal).
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           PlatformDecoder& decoder, bool showProgress = false);

} // namespace lumiran::cli

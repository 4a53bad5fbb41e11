#pragma once

#include <string>
#include <string_view>

namespace lumiran {

// The program's numbered texts. Ids from 1000; an unknown id gives an empty
// text, as a missing resource would be shown.
[[nodiscard]] std::string_view LoadResString(int id);

// The message title of a run-time error: "ｴﾗｰ" followed by the number.
[[nodiscard]] std::string errorTitle(int number);

} // namespace lumiran

#pragma once

#include <string>
#include <string_view>

namespace lumiran {

// A run-time error inside an effect or a reader. The frame shows it as a
// message titled "ｴﾗｰ" plus the number and then ends the run as cancelled,
// so every failure path carries the number and the runtime's description.
class EffectError {
  public:
    static constexpr int OverflowNumber = 6;
    static constexpr int OutOfMemoryNumber = 7;
    static constexpr int SubscriptNumber = 9;
    static constexpr int DivisionByZeroNumber = 11;

    EffectError(int number, std::string description)
        : number_(number), description_(std::move(description)) {}

    static EffectError overflow();
    static EffectError outOfMemory();
    static EffectError subscriptOutOfRange();
    static EffectError divisionByZero();

    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] const std::string& description() const { return description_; }

  private:
    int number_;
    std::string description_;
};

// Integer division as the effects use it: truncates toward zero and turns a
// zero divisor into the runtime's error instead of undefined behaviour.
template <typename T>
[[nodiscard]] T checkedDivide(T numerator, T denominator) {
    if (denominator == 0) throw EffectError::divisionByZero();
    return static_cast<T>(numerator / denominator);
}

} // namespace lumiran

// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace VirtualCamera
{

using Json = nlohmann::ordered_json;

/// Takes a JSON number as it stands, or throws `std::invalid_argument`: the conversion that comes
/// with the JSON library makes -1 the largest number of an unsigned type, and cuts fractions and
/// what is too large.
template <typename Number>
class JsonNumber
{
    static_assert(std::is_integral_v<Number> && !std::is_same_v<Number, bool>);

public:
    static Number from(Json const& json)
    {
        std::optional<Number> const number = convert(json);
        if (!number) {
            throw std::invalid_argument("a whole number from " + std::to_string(lowest) + " to " +
                                        std::to_string(highest) + " is expected, unlike " +
                                        json.dump());
        }
        return *number;
    }

private:
    static constexpr Number lowest = std::numeric_limits<Number>::min();
    static constexpr Number highest = std::numeric_limits<Number>::max();

    static std::optional<Number> convert(Json const& json)
    {
        if (json.is_number_unsigned()) {
            auto const number = json.get<std::uint64_t>();
            bool const fits = number <= static_cast<std::uint64_t>(highest);
            return fits ? std::optional(static_cast<Number>(number)) : std::nullopt;
        }
        if (json.is_number_integer()) {
            auto const number = json.get<std::int64_t>();
            bool const fits = std::is_signed_v<Number> && number >= std::int64_t{lowest};
            return fits ? std::optional(static_cast<Number>(number)) : std::nullopt;
        }
        return json.is_number_float() ? convert(json.get<double>()) : std::nullopt;
    }

    // 640.0 is a whole number, too; above 2^53 a floating-point one is rounded.
    static std::optional<Number> convert(double number)
    {
        double const beyond = std::ldexp(1.0, std::min(std::numeric_limits<Number>::digits, 53));
        double const least = std::is_signed_v<Number> ? -beyond : 0.0;
        bool const whole = std::trunc(number) == number;
        bool const fits = number >= least && number < beyond;
        return fits && whole ? std::optional(static_cast<Number>(number)) : std::nullopt;
    }
};

} // namespace VirtualCamera

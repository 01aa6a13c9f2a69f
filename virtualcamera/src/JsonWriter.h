// SPDX-License-Identifier: MIT
#pragma once

#include "JsonNumber.h"

#include <optional>
#include <utility>
#include <vector>

namespace VirtualCamera
{

/// Writes a script as a JSON object, with the operations of `JsonReader`.
class JsonWriter
{
public:
    template <typename Value>
    void field(char const* key, Value const& value)
    {
        m_object[key] = value;
    }
    template <typename Value>
    void field(char const* key, std::optional<Value> const& value)
    {
        if (value) {
            m_object[key] = *value;
        }
    }
    template <typename Value, typename Parse, typename Print>
    void field(char const* key, Value const& value, Parse const&, Print const& print)
    {
        Json json = print(value);
        if (!json.is_null()) {
            m_object[key] = std::move(json);
        }
    }
    template <typename Value, typename Describe>
    void object(char const* key, Value& value, Describe const& describe)
    {
        JsonWriter nested;
        describe(nested, value);
        m_object[key] = std::move(nested.m_object);
    }
    template <typename Value, typename Make, typename Describe>
    void list(char const* key, std::vector<Value>& values, Make const&, Describe const& describe)
    {
        Json array = Json::array();
        for (Value& value : values) {
            JsonWriter nested;
            describe(nested, value);
            array.push_back(std::move(nested.m_object));
        }
        m_object[key] = std::move(array);
    }

    Json take() { return std::move(m_object); }
    static constexpr bool reading = false;

private:
    Json m_object = Json::object();
};

} // namespace VirtualCamera

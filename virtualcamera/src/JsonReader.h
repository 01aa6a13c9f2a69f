// SPDX-License-Identifier: MIT
#pragma once

#include "JsonNumber.h"

#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// Reads the members of a JSON object into a script; `JsonWriter` does the reverse. Both are driven
/// by the one description of each script in `ScriptFields.h`.
class JsonReader
{
public:
    JsonReader(Json const& object, std::string place) : m_object(object), m_place(std::move(place))
    {
        if (!m_object.is_object()) {
            fail(m_place, "an object is expected");
        }
    }

    /// Throws for members that nobody has asked for: mostly misspelt ones.
    void finish() const
    {
        for (auto const& [key, value] : m_object.items()) {
            if (m_used.count(key) == 0) {
                fail(m_place + "." + key, "unknown key");
            }
        }
    }

    template <typename Value>
    void field(char const* key, Value& value)
    {
        visit(key,
              [&value](Json const& json, std::string const&) { value = valueOf<Value>(json); });
    }
    template <typename Value>
    void field(char const* key, std::optional<Value>& value)
    {
        visit(key,
              [&value](Json const& json, std::string const&) { value = valueOf<Value>(json); });
    }
    /// A value written in a form of its own; `parse` and `print` convert from and to JSON.
    template <typename Value, typename Parse, typename Print>
    void field(char const* key, Value& value, Parse const& parse, Print const&)
    {
        visit(key, [&](Json const& json, std::string const&) { value = parse(json); });
    }
    /// A nested object, described by `describe(archive, value)`.
    template <typename Value, typename Describe>
    void object(char const* key, Value& value, Describe const& describe)
    {
        visit(key, [&](Json const& json, std::string const& place) {
            JsonReader nested(json, place);
            describe(nested, value);
            nested.finish();
        });
    }
    /// An array of objects; `make(reader)` gives the element to describe.
    template <typename Value, typename Make, typename Describe>
    void list(char const* key, std::vector<Value>& values, Make const& make,
              Describe const& describe)
    {
        visit(key, [&](Json const& json, std::string const& place) {
            if (!json.is_array()) {
                fail(place, "an array is expected");
            }
            for (std::size_t index = 0; index < json.size(); ++index) {
                JsonReader nested(json[index], place + "[" + std::to_string(index) + "]");
                values.push_back(guarded(nested.m_place, [&] { return make(nested); }));
                describe(nested, values.back());
                nested.finish();
            }
        });
    }

    bool has(char const* key) const { return m_object.contains(key); }
    /// A member that has to be there.
    Json const& need(char const* key)
    {
        m_used.insert(key);
        if (!has(key)) {
            fail(m_place, std::string("\"") + key + "\" is missing");
        }
        return m_object[key];
    }
    /// Accepts a member that somebody else reads.
    void ignore(char const* key) { m_used.insert(key); }
    static constexpr bool reading = true;

private:
    template <typename Value>
    static Value valueOf(Json const& json)
    {
        if constexpr (std::is_integral_v<Value> && !std::is_same_v<Value, bool>) {
            return JsonNumber<Value>::from(json);
        } else {
            return json.get<Value>();
        }
    }

    template <typename Action>
    static auto guarded(std::string const& place, Action const& action) -> decltype(action())
    {
        try {
            return action();
        } catch (Json::exception const& failure) {
            fail(place, failure.what());
        } catch (std::logic_error const& failure) {
            fail(place, failure.what());
        }
    }

    template <typename Action>
    void visit(char const* key, Action const& action)
    {
        m_used.insert(key);
        if (!has(key)) {
            return;
        }
        std::string const place = m_place + "." + key;
        guarded(place, [&] { action(m_object[key], place); });
    }

    [[noreturn]] static void fail(std::string const& place, std::string const& why)
    {
        throw std::runtime_error(place + ": " + why);
    }

    Json const& m_object;
    std::string m_place;
    std::set<std::string> m_used;
};

} // namespace VirtualCamera

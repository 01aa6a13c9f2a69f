// SPDX-License-Identifier: MIT
#pragma once

#include "JsonReader.h"
#include "JsonWriter.h"
#include "ScriptNames.h"

namespace VirtualCamera
{

/// The keys of a configuration, each script's in one function that both reads and writes.
struct ScriptFields
{
    /// Keys, each followed by what it stands for.
    template <typename Archive, typename Value, typename... Rest>
    static void fields(Archive& archive, char const* key, Value& value, Rest&... rest)
    {
        archive.field(key, value);
        if constexpr (sizeof...(rest) > 0) {
            fields(archive, rest...);
        }
    }

    template <typename Archive>
    static void interval(Archive& archive, char const* key, Interval& value)
    {
        archive.field(
            key, value, [](Json const& json) { return intervalByText(json.get<std::string>()); },
            intervalText);
    }

    template <typename Archive>
    static void intervals(Archive& archive, IntervalScript& script)
    {
        rangeKind(archive, "intervalKind", script.kind);
        archive.field("intervals", script.list, intervalList, intervalTexts);
        if (script.kind == RangeKind::Discrete) {
            return;
        }
        interval(archive, "minimumInterval", script.minimum);
        interval(archive, "maximumInterval", script.maximum);
        interval(archive, "stepInterval", script.step);
    }

    template <typename Archive>
    static void size(Archive& archive, SizeScript& script)
    {
        fields(archive, "width", script.width, "height", script.height);
        intervals(archive, script.intervals);
    }

    template <typename Archive>
    static void sizeRange(Archive& archive, SizeRangeScript& script)
    {
        fields(archive, "minimumWidth", script.minimumWidth, "maximumWidth", script.maximumWidth,
               "stepWidth", script.stepWidth, "minimumHeight", script.minimumHeight,
               "maximumHeight", script.maximumHeight, "stepHeight", script.stepHeight);
        intervals(archive, script.intervals);
    }

    template <typename Archive>
    static void format(Archive& archive, FormatScript& script)
    {
        pixelFormat(archive, "pixelFormat", script.pixelFormat);
        archive.field("description", script.description);
        flags(archive, "flags", script.flags, formatFlagNames());
        rangeKind(archive, "sizeKind", script.sizeKind);
        if (script.sizeKind == RangeKind::Discrete) {
            archive.list(
                "sizes", script.sizes, [](auto&) { return SizeScript{}; },
                [](auto& nested, SizeScript& value) { size(nested, value); });
        } else {
            archive.object("sizeRange", script.sizeRange,
                           [](auto& nested, SizeRangeScript& value) { sizeRange(nested, value); });
        }
        fields(archive, "bytesPerLine", script.bytesPerLine, "sizeImage", script.sizeImage);
        bytes(archive, "frameBytes", script.frameBytes);
    }

    template <typename Archive>
    static void menuItem(Archive& archive, MenuItem& script)
    {
        fields(archive, "index", script.index, "label", script.label, "value", script.value);
    }

    template <typename Archive>
    static void control(Archive& archive, ControlScript& script)
    {
        if constexpr (!Archive::reading) {
            archive.field("type", nameOf(controlTypeNames(), script.type));
            archive.field("id", idText(script.id));
            archive.field("name", script.name);
        }
        flags(archive, "flags", script.flags, controlFlagNames());
        archive.list(
            "items", script.items, [](auto&) { return MenuItem{}; },
            [](auto& nested, MenuItem& value) { menuItem(nested, value); });
        for (MenuItem const& item : script.items) {
            if (script.maximum < item.index) {
                script.maximum = item.index;
            }
        }
        fields(archive, "minimum", script.minimum, "maximum", script.maximum, "step", script.step,
               "default", script.defaultValue, "value", script.value, "text", script.text);
        id(archive, "activeOnlyWhenControl", script.masterId);
        archive.field("activeOnlyWhenValue", script.masterValue);
        error(archive, "readError", script.readError);
        error(archive, "writeError", script.writeError);
        fields(archive, "showRange", script.rangeShown, "nameExactSize", script.exactSizeNamed);
    }

    template <typename Archive>
    static void selector(Archive& archive, SelectorScript& script)
    {
        fields(archive, "selector", script.selector, "size", script.size);
        bytes(archive, "current", script.current);
        bytes(archive, "minimum", script.minimum);
        bytes(archive, "maximum", script.maximum);
        bytes(archive, "default", script.defaults);
        fields(archive, "readable", script.readable, "writable", script.writable);
    }

    template <typename Archive>
    static void fault(Archive& archive, Fault& script)
    {
        archive.field(
            "call", script.call,
            [](Json const& json) { return callByName(json.get<std::string>()); },
            [](CallId const& value) { return Json(callName(value)); });
        error(archive, "errno", script.error);
        fields(archive, "use", script.use, "fromThenOn", script.fromThenOn);
    }

    template <typename Archive>
    static void frameFault(Archive& archive, FrameFault& script)
    {
        fields(archive, "frame", script.frame, "fromThenOn", script.fromThenOn);
        fields(archive, "lateMilliseconds", script.lateMilliseconds, "corrupted", script.corrupted);
        fields(archive, "missing", script.missing, "bytesUsed", script.bytesUsed);
        fields(archive, "claimedBytes", script.claimedBytes, "index", script.index);
        fields(archive, "userPointer", script.userPointer, "length", script.length);
    }

    template <typename Archive>
    static void pixelFormat(Archive& archive, char const* key, std::uint32_t& value)
    {
        archive.field(
            key, value, [](Json const& json) { return pixelFormatByName(json.get<std::string>()); },
            [](std::uint32_t code) { return code == 0 ? Json() : Json(pixelFormatName(code)); });
    }

    template <typename Archive>
    static void id(Archive& archive, char const* key, std::uint32_t& value)
    {
        archive.field(key, value, idOf,
                      [](std::uint32_t number) { return number == 0 ? Json() : idText(number); });
    }

    template <typename Archive>
    static void flags(Archive& archive, char const* key, std::uint32_t& value,
                      NameTable const& names)
    {
        archive.field(
            key, value, [&names](Json const& json) { return flagsOf(json, names); },
            [&names](std::uint32_t bits) { return flagTexts(bits, names); });
    }

    template <typename Archive, typename Enumeration>
    static void enumeration(Archive& archive, char const* key, Enumeration& value,
                            NameTable const& names)
    {
        archive.field(
            key, value,
            [&names](Json const& json) {
                return static_cast<Enumeration>(numberOf(names, json.get<std::string>()));
            },
            [&names](Enumeration number) {
                return Json(nameOf(names, static_cast<std::uint32_t>(number)));
            });
    }

    template <typename Archive>
    static void bytes(Archive& archive, char const* key, std::vector<std::uint8_t>& value)
    {
        archive.field(
            key, value, [](Json const& json) { return bytesByHex(json.get<std::string>()); },
            [](std::vector<std::uint8_t> const& content) {
                return content.empty() ? Json() : Json(hexOf(content));
            });
    }

    /// A control's id: a number, or a text such as "0x00980900".
    static std::uint32_t idOf(Json const& json);
    static Json idText(std::uint32_t id);
    static std::uint32_t flagsOf(Json const& json, NameTable const& names);
    static Json flagTexts(std::uint32_t flags, NameTable const& names);

private:
    template <typename Archive>
    static void rangeKind(Archive& archive, char const* key, RangeKind& value)
    {
        enumeration(archive, key, value, rangeKindNames());
    }

    template <typename Archive>
    static void error(Archive& archive, char const* key, int& value)
    {
        archive.field(
            key, value, [](Json const& json) { return errorByName(json.get<std::string>()); },
            [](int number) { return number == 0 ? Json() : Json(errorName(number)); });
    }

    static Json intervalText(Interval const& value);
    static std::vector<Interval> intervalList(Json const& json);
    static Json intervalTexts(std::vector<Interval> const& values);
};

} // namespace VirtualCamera

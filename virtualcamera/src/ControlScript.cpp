// SPDX-License-Identifier: MIT
#include "ControlScript.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::uint32_t flagsOfType(std::uint32_t type)
{
    switch (type) {
    case V4L2_CTRL_TYPE_BUTTON:
        return V4L2_CTRL_FLAG_WRITE_ONLY | V4L2_CTRL_FLAG_EXECUTE_ON_WRITE;
    case V4L2_CTRL_TYPE_CTRL_CLASS:
        return V4L2_CTRL_FLAG_READ_ONLY | V4L2_CTRL_FLAG_WRITE_ONLY;
    case V4L2_CTRL_TYPE_STRING:
        return V4L2_CTRL_FLAG_HAS_PAYLOAD;
    default:
        return 0;
    }
}

} // namespace

ControlScript::ControlScript(std::uint32_t controlType, std::uint32_t controlId,
                             std::string controlName)
    : type(controlType), id(controlId), name(std::move(controlName)),
      flags(flagsOfType(controlType)), rangeShown(controlType != V4L2_CTRL_TYPE_INTEGER64)
{
}

ControlScript& ControlScript::range(std::int64_t lowest, std::int64_t highest,
                                    std::int64_t stepWidth)
{
    minimum = lowest;
    maximum = highest;
    step = stepWidth;
    return *this;
}

ControlScript& ControlScript::byDefault(std::int64_t newDefault)
{
    defaultValue = newDefault;
    return *this;
}

ControlScript& ControlScript::currently(std::int64_t newValue)
{
    value = newValue;
    return *this;
}

ControlScript& ControlScript::currently(std::string newText)
{
    text = std::move(newText);
    return *this;
}

ControlScript& ControlScript::withItem(std::string label)
{
    return withItem(items.empty() ? 0 : items.back().index + 1, std::move(label));
}

ControlScript& ControlScript::withItem(std::uint32_t index, std::string label)
{
    items.push_back({index, std::move(label), 0});
    maximum = std::max<std::int64_t>(maximum, index);
    return *this;
}

ControlScript& ControlScript::withItem(std::uint32_t index, std::int64_t itemValue)
{
    items.push_back({index, {}, itemValue});
    maximum = std::max<std::int64_t>(maximum, index);
    return *this;
}

ControlScript& ControlScript::withFlags(std::uint32_t flagBits)
{
    flags |= flagBits;
    return *this;
}

ControlScript& ControlScript::readOnly()
{
    return withFlags(V4L2_CTRL_FLAG_READ_ONLY);
}

ControlScript& ControlScript::activeOnlyWhen(std::uint32_t idOfMaster, std::int64_t valueOfMaster)
{
    masterId = idOfMaster;
    masterValue = valueOfMaster;
    return *this;
}

ControlScript& ControlScript::refusingReads(int error)
{
    readError = error;
    return *this;
}

ControlScript& ControlScript::refusingWrites(int error)
{
    writeError = error;
    return *this;
}

ControlScript& ControlScript::showingRange(bool shown)
{
    rangeShown = shown;
    return *this;
}

ControlScript& ControlScript::namingExactSize(bool exact)
{
    exactSizeNamed = exact;
    return *this;
}

ControlScript integerControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_INTEGER, id, std::move(name));
}

ControlScript booleanControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_BOOLEAN, id, std::move(name)).range(0, 1);
}

ControlScript menuControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_MENU, id, std::move(name));
}

ControlScript integerMenuControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_INTEGER_MENU, id, std::move(name));
}

ControlScript buttonControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_BUTTON, id, std::move(name)).range(0, 0, 0);
}

ControlScript integer64Control(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_INTEGER64, id, std::move(name));
}

ControlScript stringControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_STRING, id, std::move(name));
}

ControlScript bitMaskControl(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_BITMASK, id, std::move(name)).range(0, 0, 0);
}

ControlScript unsigned8Control(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_U8, id, std::move(name)).range(0, 0xff);
}

ControlScript unsigned16Control(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_U16, id, std::move(name)).range(0, 0xffff);
}

ControlScript unsigned32Control(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_U32, id, std::move(name)).range(0, 0xffffffffLL);
}

ControlScript classHeading(std::uint32_t id, std::string name)
{
    return ControlScript(V4L2_CTRL_TYPE_CTRL_CLASS, id, std::move(name)).range(0, 0, 0);
}

} // namespace VirtualCamera

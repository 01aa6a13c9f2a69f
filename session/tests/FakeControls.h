// SPDX-License-Identifier: MIT
#pragma once

#include <ICameraControl.h>
#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <stdexcept>
#include <string>
#include <vector>

/// A control's state, to be mixed into one of the typed interfaces.
template <typename Interface>
class FakeControl : public virtual Interface
{
public:
    using Type = ImageAcquisition::ICameraControl::Type;

    unsigned int id() const override { return 0; }
    Type type() const override { return Type::Invalid; }
    ImageAcquisition::ICameraControl::Family family() const override
    {
        return ImageAcquisition::ICameraControl::Unknown;
    }
    char const* name() const override { return "Fake"; }
    char const* typeString() const override { return ""; }
    char const* familyString() const override { return ""; }
    bool isDisabled() const override { return disabled; }
    bool isGrabbed() const override { return grabbed; }
    bool isReadOnly() const override { return readOnly; }
    bool needsClassUpdate() const override { return false; }
    bool isInactive() const override { return inactive; }
    bool bestAsSlider() const override { return false; }
    bool isWriteOnly() const override { return false; }
    bool isVolatile() const override { return false; }
    bool hasPayload() const override { return false; }
    bool executesOnWrite() const override { return false; }
    bool updateState() override { return true; }

    bool disabled = false;
    bool grabbed = false;
    bool readOnly = false;
    bool inactive = false;
};

/// What all that can be written do with a write: note it, and take it unless they refuse.
template <typename Interface, typename Value>
class WritableControl : public FakeControl<Interface>
{
public:
    bool write(Value const& value)
    {
        written.push_back(value);
        return !refusing;
    }

    std::vector<Value> written;
    bool refusing = false;
};

template <typename T>
class FakeNumber final : public WritableControl<ImageAcquisition::ICameraControlNumeric<T>, T>
{
public:
    T maximum() const override { return highest; }
    T minimum() const override { return lowest; }
    T step() const override { return 1; }
    T value() const override { return 0; }
    // As the interface has it: the driver does not hear of what is out of range.
    bool setValue(T value) override
    {
        return value >= lowest && value <= highest && this->write(value);
    }

    T lowest = 0;
    T highest = 100;
};

class FakeBoolean final : public WritableControl<ImageAcquisition::ICameraControlBoolean, bool>
{
public:
    bool value() const override { return false; }
    bool setValue(bool value) override { return write(value); }
    bool defaultValue() const override { return false; }
};

class FakeBitMask final
    : public WritableControl<ImageAcquisition::ICameraControlBitMask, unsigned int>
{
public:
    unsigned int defaultValue() const override { return 0; }
    unsigned int value() const override { return 0; }
    bool setValue(unsigned int value) override { return write(value); }
};

class FakeButton final : public WritableControl<ImageAcquisition::ICameraControlButton, bool>
{
public:
    bool clicked() override { return write(true); }
};

class FakeString final : public WritableControl<ImageAcquisition::ICameraControlString, std::string>
{
public:
    unsigned int stringSize() const override { return 9; }
    bool getValue(char*, int) const override { return false; }
    bool setValue(char const* value) override { return write(value); }
    int minLength() const override { return 2; }
    int maxLength() const override { return 8; }
};

class FakeMenu final : public WritableControl<ImageAcquisition::ICameraControlStringMenu, int>
{
public:
    int defaultIndex() const override { return 0; }
    int currentIndex() const override { return 0; }
    bool setCurrentIndex(int position) override { return write(position); }
    int count() const override { return static_cast<int>(labels.size()); }
    char const* currentString() const override { return string(0); }
    char const* defaultString() const override { return string(0); }
    char const* string(int position) const override
    {
        return labels.at(std::size_t(position)).c_str();
    }

    std::vector<std::string> labels{"Off", "on", "2", "On"};
};

class FakeNumberMenu final : public WritableControl<ImageAcquisition::ICameraControlInt64Menu, int>
{
public:
    int defaultIndex() const override { return 0; }
    int currentIndex() const override { return 0; }
    bool setCurrentIndex(int position) override { return write(position); }
    int count() const override { return 0; }
    long long currentValue() const override { throw std::out_of_range("value"); }
    long long defaultValue() const override { throw std::out_of_range("value"); }
    long long value(int) const override { throw std::out_of_range("value"); }
};

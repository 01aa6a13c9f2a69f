// SPDX-License-Identifier: MIT
#include "device/DeviceList.h"

#include "DeviceStub.h"
#include "device/Device.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

using namespace ImageAcquisition;

Device* named(int index, char const* name)
{
    auto device = std::make_unique<Device>(index);
    device->setName(name);
    device->setSystemName("/dev/video0");
    return device.release();
}

/// Counts how many of its kind are alive.
struct CountedDevice : public DeviceStub
{
    explicit CountedDevice(int& alive) : count(alive) { ++count; }
    CountedDevice(CountedDevice const&) = delete;
    CountedDevice& operator=(CountedDevice const&) = delete;
    ~CountedDevice() override { --count; }

    int& count;
};

TEST(DeviceList, StartsEmpty)
{
    DeviceList const list;
    EXPECT_EQ(0, list.size());
    EXPECT_EQ(nullptr, list.at(0));
    EXPECT_EQ(nullptr, list.deviceByName("Camera"));
}

TEST(DeviceList, KeepsTheOrderOfAppending)
{
    DeviceList list;
    IDevice const* const first = named(0, "A");
    IDevice const* const second = named(1, "B");
    list.append(const_cast<IDevice*>(first));
    list.append(const_cast<IDevice*>(second));
    ASSERT_EQ(2, list.size());
    EXPECT_EQ(first, list.at(0));
    EXPECT_EQ(second, list.at(1));
}

TEST(DeviceList, GivesNullOutsideItsPositions)
{
    DeviceList list;
    list.append(named(0, "A"));
    EXPECT_EQ(nullptr, list.at(-1));
    EXPECT_EQ(nullptr, list.at(list.size()));
    EXPECT_EQ(nullptr, list.at(2147483647));
    EXPECT_EQ(nullptr, list.at(-2147483647 - 1));
}

TEST(DeviceList, FindsTheFirstOfTwoDevicesThatShareAName)
{
    DeviceList list;
    list.append(named(0, "Other"));
    list.append(named(1, "Twin"));
    list.append(named(2, "Twin"));
    ASSERT_NE(nullptr, list.deviceByName("Twin"));
    EXPECT_EQ(1, list.deviceByName("Twin")->index());
}

TEST(DeviceList, ComparesNamesToTheLetter)
{
    DeviceList list;
    list.append(named(0, "Camera"));
    EXPECT_NE(nullptr, list.deviceByName("Camera"));
    EXPECT_EQ(nullptr, list.deviceByName("camera"));
    EXPECT_EQ(nullptr, list.deviceByName("Camer"));
    EXPECT_EQ(nullptr, list.deviceByName("Camera "));
    EXPECT_EQ(nullptr, list.deviceByName(""));
    EXPECT_EQ(nullptr, list.deviceByName(nullptr));
}

TEST(DeviceList, FindsANodePathOnlyWhereACardIsCalledSo)
{
    DeviceList list;
    list.append(named(0, "Camera"));
    EXPECT_EQ(nullptr, list.deviceByName("/dev/video0"));
    list.append(named(1, "/dev/video0"));
    ASSERT_NE(nullptr, list.deviceByName("/dev/video0"));
    EXPECT_EQ(1, list.deviceByName("/dev/video0")->index());
}

TEST(DeviceList, DestroysItsDevicesWhenItIsCleared)
{
    int alive = 0;
    DeviceList list;
    list.append(new CountedDevice(alive));
    list.append(new CountedDevice(alive));
    ASSERT_EQ(2, alive);
    list.clear();
    EXPECT_EQ(0, list.size());
    EXPECT_EQ(0, alive);
}

TEST(DeviceList, DestroysItsDevicesWithItself)
{
    int alive = 0;
    {
        std::unique_ptr<IDeviceList> owner;
        auto list = std::make_unique<DeviceList>();
        list->append(new CountedDevice(alive));
        owner = std::move(list);
        ASSERT_EQ(1, alive);
    }
    EXPECT_EQ(0, alive);
}

TEST(DeviceList, IgnoresANullDevice)
{
    DeviceList list;
    list.append(nullptr);
    EXPECT_EQ(0, list.size());
}

} // namespace

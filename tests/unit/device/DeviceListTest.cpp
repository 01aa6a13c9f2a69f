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

TEST(DeviceListTest, StartsEmpty)
{
    DeviceList const list;
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.at(0), nullptr);
    EXPECT_EQ(list.deviceByName("Camera"), nullptr);
}

TEST(DeviceListTest, KeepsTheOrderOfAppending)
{
    DeviceList list;
    IDevice const* const first = named(0, "A");
    IDevice const* const second = named(1, "B");
    list.append(const_cast<IDevice*>(first));
    list.append(const_cast<IDevice*>(second));
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list.at(0), first);
    EXPECT_EQ(list.at(1), second);
}

TEST(DeviceListTest, GivesNullOutsideItsPositions)
{
    DeviceList list;
    list.append(named(0, "A"));
    EXPECT_EQ(list.at(-1), nullptr);
    EXPECT_EQ(list.at(list.size()), nullptr);
    EXPECT_EQ(list.at(2147483647), nullptr);
    EXPECT_EQ(list.at(-2147483647 - 1), nullptr);
}

TEST(DeviceListTest, FindsTheFirstOfTwoDevicesThatShareAName)
{
    DeviceList list;
    list.append(named(0, "Other"));
    list.append(named(1, "Twin"));
    list.append(named(2, "Twin"));
    ASSERT_NE(list.deviceByName("Twin"), nullptr);
    EXPECT_EQ(list.deviceByName("Twin")->index(), 1);
}

TEST(DeviceListTest, ComparesNamesToTheLetter)
{
    DeviceList list;
    list.append(named(0, "Camera"));
    EXPECT_NE(list.deviceByName("Camera"), nullptr);
    EXPECT_EQ(list.deviceByName("camera"), nullptr);
    EXPECT_EQ(list.deviceByName("Camer"), nullptr);
    EXPECT_EQ(list.deviceByName("Camera "), nullptr);
    EXPECT_EQ(list.deviceByName(""), nullptr);
    EXPECT_EQ(list.deviceByName(nullptr), nullptr);
}

TEST(DeviceListTest, FindsANodePathOnlyWhereACardIsCalledSo)
{
    DeviceList list;
    list.append(named(0, "Camera"));
    EXPECT_EQ(list.deviceByName("/dev/video0"), nullptr);
    list.append(named(1, "/dev/video0"));
    ASSERT_NE(list.deviceByName("/dev/video0"), nullptr);
    EXPECT_EQ(list.deviceByName("/dev/video0")->index(), 1);
}

TEST(DeviceListTest, DestroysItsDevicesWhenItIsCleared)
{
    int alive = 0;
    DeviceList list;
    list.append(new CountedDevice(alive));
    list.append(new CountedDevice(alive));
    ASSERT_EQ(alive, 2);
    list.clear();
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(alive, 0);
}

TEST(DeviceListTest, DestroysItsDevicesWithItself)
{
    int alive = 0;
    {
        std::unique_ptr<IDeviceList> owner;
        auto list = std::make_unique<DeviceList>();
        list->append(new CountedDevice(alive));
        owner = std::move(list);
        ASSERT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(DeviceListTest, IgnoresANullDevice)
{
    DeviceList list;
    list.append(nullptr);
    EXPECT_EQ(list.size(), 0);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "SerialControls.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlStringMenu.h>

#include <map>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

using Numeric = ICameraControlNumeric<int>;

/// What each position of a menu sends.
std::vector<int> const& menuValues(SerialRow const& row)
{
    static std::map<std::string, std::vector<int>> const values{
        {"Auto Exposure", {2, 1}}, {"Focus Strategy", {0, 1, 2}}, {"Lighting Mode", {0, 3}}};
    return values.at(row.name);
}

} // namespace

std::unique_ptr<FuserFolder> SerialControls::folder;
std::unique_ptr<EmulatedCameras> SerialControls::cameras;
CameraPointer SerialControls::camera;

void SerialControls::SetUpTestSuite()
{
    folder = std::make_unique<FuserFolder>();
    cameras = std::make_unique<EmulatedCameras>(EmulatedCameras::Texts{"vendor-new"});
    camera = openListed(cameras->videoNode());
}

void SerialControls::TearDownTestSuite()
{
    camera.reset();
    cameras.reset();
    folder.reset();
}

Bytes SerialControls::bytesOf(SerialRow const& row)
{
    return cameraBytes(*cameras, static_cast<unsigned>(row.unit),
                       static_cast<unsigned>(row.selector));
}

std::pair<unsigned, unsigned> SerialControls::fieldOf(SerialRow const& row)
{
    return row.offset < 0
               ? std::pair{0U, static_cast<unsigned>(bytesOf(row).size())}
               : std::pair{static_cast<unsigned>(row.offset), static_cast<unsigned>(row.length)};
}

long long SerialControls::read(SerialRow const& row)
{
    ICameraControl& control = controlOf(*camera, row.name);
    if (auto const* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
        return menuValues(row).at(static_cast<std::size_t>(menu->currentIndex()));
    }
    if (auto const* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
        return boolean->value() ? 1 : 0;
    }
    return dynamic_cast<Numeric&>(control).value();
}

long long SerialControls::change(SerialRow const& row)
{
    ICameraControl& control = controlOf(*camera, row.name);
    long long const present = read(row);
    if (auto* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
        int const position = menu->currentIndex() == 0 ? 1 : 0;
        EXPECT_TRUE(menu->setCurrentIndex(position));
        return menuValues(row).at(static_cast<std::size_t>(position));
    }
    if (auto* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
        EXPECT_TRUE(boolean->setValue(present == 0));
        return 1 - present;
    }
    auto& number = dynamic_cast<Numeric&>(control);
    int const value = present == number.minimum() ? number.maximum() : number.minimum();
    EXPECT_TRUE(number.setValue(value));
    return value;
}

} // namespace KernelTest

// SPDX-License-Identifier: MIT
// Built like a client: it sees the public interfaces and links the shared library alone.
#include "DeviceStub.h"
#include "ImageAcquisition.h"
#include "VirtualCamera.h"
#include "WholeFile.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <stdexcept>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int firstPrivate = V4L2_CID_PRIVATE_BASE;

class SharedLibraryTest : public testing::Test
{
protected:
    ICameraControl* control(char const* name) const { return m_camera->control(name); }

    template <typename Interface>
    Interface* as(char const* name) const
    {
        return dynamic_cast<Interface*>(control(name));
    }

    InstalledCamera m_node =
        aCamera()
            .withControl(integerControl(V4L2_CID_BRIGHTNESS, "Int32").range(0, 9).byDefault(4))
            .withControl(integer64Control(V4L2_CID_GAIN, "Int64").currently(0x500000000))
            .withControl(unsigned8Control(V4L2_CID_CONTRAST, "UInt8").byDefault(8))
            .withControl(unsigned16Control(V4L2_CID_HUE, "UInt16").byDefault(16))
            .withControl(booleanControl(V4L2_CID_AUTO_WHITE_BALANCE, "Boolean").byDefault(1))
            .withControl(buttonControl(V4L2_CID_GAMMA, "Button"))
            .withControl(bitMaskControl(V4L2_CID_SHARPNESS, "BitMask").range(0, 7).byDefault(5))
            .withControl(menuControl(V4L2_CID_EXPOSURE_AUTO, "StringMenu").withItem("One"))
            .withControl(
                integerMenuControl(V4L2_CID_HUE_AUTO, "Int64Menu").withItem(0, std::int64_t{1}))
            .withControl(stringControl(firstPrivate, "String").range(0, 9).currently("text"))
            .install();
    std::unique_ptr<IBlockingCamera> m_camera{
        ICameraFactory::getUniqueInstance().createBlockingCamera(
            std::make_unique<DeviceStub>().get())};
};

/// Whether the shared library itself, apart from the program, offers a symbol.
bool libraryExports(std::string const& symbol)
{
    // The program may hold a copy, so the library is asked by its own name.
    void* const library = dlopen("libimageacquisition.so.1", RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) {
        throw std::runtime_error("the shared library is not loaded");
    }
    void* const address = dlsym(library, symbol.c_str());
    dlclose(library);
    return address != nullptr;
}

/// Whether the process has a file of such a name in its memory.
bool mapsFile(std::string const& name)
{
    return wholeFile("/proc/self/maps").find(name) != std::string::npos;
}

TEST_F(SharedLibraryTest, NeedsNoQtForAnOrdinaryCamera)
{
    ASSERT_NE(m_camera, nullptr);
    EXPECT_TRUE(mapsFile("libimageacquisition.so"));
    EXPECT_FALSE(mapsFile("libimageacquisition-serial"));
    EXPECT_FALSE(mapsFile("libQt"));
}

TEST_F(SharedLibraryTest, NumbersAreReachedByCast)
{
    ASSERT_NE(as<ICameraControlNumeric<int>>("Int32"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<int>>("Int32")->value(), 4);
    ASSERT_NE(as<ICameraControlNumeric<long long>>("Int64"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<long long>>("Int64")->value(), 0x500000000);
    ASSERT_NE(as<ICameraControlNumeric<unsigned char>>("UInt8"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<unsigned char>>("UInt8")->value(), 8);
    ASSERT_NE(as<ICameraControlNumeric<unsigned short>>("UInt16"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<unsigned short>>("UInt16")->value(), 16);
}

TEST_F(SharedLibraryTest, OtherTypesAreReachedByCast)
{
    ASSERT_NE(as<ICameraControlBoolean>("Boolean"), nullptr);
    EXPECT_TRUE(as<ICameraControlBoolean>("Boolean")->value());
    ASSERT_NE(as<ICameraControlButton>("Button"), nullptr);
    EXPECT_TRUE(as<ICameraControlButton>("Button")->clicked());
    ASSERT_NE(as<ICameraControlBitMask>("BitMask"), nullptr);
    EXPECT_EQ(as<ICameraControlBitMask>("BitMask")->value(), 5u);
    ASSERT_NE(as<ICameraControlStringMenu>("StringMenu"), nullptr);
    EXPECT_STREQ(as<ICameraControlStringMenu>("StringMenu")->currentString(), "One");
    ASSERT_NE(as<ICameraControlInt64Menu>("Int64Menu"), nullptr);
    EXPECT_EQ(as<ICameraControlInt64Menu>("Int64Menu")->currentIndex(), 0);
    ASSERT_NE(as<ICameraControlBaseMenu>("Int64Menu"), nullptr);
    ASSERT_NE(as<ICameraControlString>("String"), nullptr);
    char buffer[16];
    EXPECT_TRUE(as<ICameraControlString>("String")->getValue(buffer, 16));
    EXPECT_STREQ(buffer, "text");
}

TEST_F(SharedLibraryTest, CastToAnotherTypeGivesNull)
{
    EXPECT_EQ(as<ICameraControlNumeric<long long>>("Int32"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<unsigned int>>("Int32"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<int>>("Boolean"), nullptr);
    EXPECT_EQ(as<ICameraControlStringMenu>("Int64Menu"), nullptr);
    EXPECT_EQ(as<ICameraControlNumeric<int>>("no such control"), nullptr);
}

TEST_F(SharedLibraryTest, OutOfRangeCanBeCaughtByTheClient)
{
    EXPECT_THROW(as<ICameraControlStringMenu>("StringMenu")->string(1), std::out_of_range);
    EXPECT_THROW(as<ICameraControlInt64Menu>("Int64Menu")->value(0), std::out_of_range);
}

TEST_F(SharedLibraryTest, TypeInformationOfEachInstantiationIsExported)
{
    for (char const* const code : {"i", "x", "h", "t", "j"}) {
        std::string const type =
            std::string("N16ImageAcquisition21ICameraControlNumericI") + code + "EE";
        EXPECT_TRUE(libraryExports("_ZTI" + type)) << type;
    }
    EXPECT_TRUE(libraryExports("_ZTIN16ImageAcquisition14ICameraControlE"));
}

TEST_F(SharedLibraryTest, ImplementationsAreHidden)
{
    EXPECT_FALSE(libraryExports("_ZTIN16ImageAcquisition13CameraControlE"));
    EXPECT_FALSE(libraryExports("_ZTIN16ImageAcquisition20CameraControlNumericIiEE"));
}

} // namespace

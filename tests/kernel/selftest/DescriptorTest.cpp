// SPDX-License-Identifier: MIT
#include "CameraModel.h"
#include "Descriptors.h"

#include <gtest/gtest.h>
#include <set>

using namespace UsbCamera;

namespace
{

constexpr unsigned configurationType = 2;

/// The descriptors within a configuration, each by its own length.
std::vector<Bytes> split(Bytes const& configuration)
{
    std::vector<Bytes> parts;
    std::size_t offset = 0;
    while (offset < configuration.size()) {
        std::size_t const size = configuration[offset];
        if (size < 2 || offset + size > configuration.size()) {
            ADD_FAILURE() << "a descriptor of length " << size << " at " << offset;
            break;
        }
        auto const begin = configuration.begin() + static_cast<std::ptrdiff_t>(offset);
        parts.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(size));
        offset += size;
    }
    return parts;
}

class DescriptorTest : public testing::TestWithParam<char const*>
{
protected:
    Bytes configuration() const
    {
        return makeDescriptor(parseModel(GetParam()), configurationType, 0).value();
    }
};

TEST_P(DescriptorTest, LengthsAddUpToTheConfigurations)
{
    Bytes const bytes = configuration();
    EXPECT_EQ(readLittle(bytes, 2, 2), bytes.size());
    std::size_t sum = 0;
    for (Bytes const& part : split(bytes)) {
        sum += part.size();
    }
    EXPECT_EQ(sum, bytes.size());
}

TEST_P(DescriptorTest, InterfacesAreNumberedWithoutAGap)
{
    std::set<unsigned> numbers;
    for (Bytes const& part : split(configuration())) {
        if (part[1] == 4) {
            EXPECT_EQ(part[2], numbers.size());
            numbers.insert(part[2]);
        }
    }
    EXPECT_EQ(numbers.size(), configuration()[4]);
}

TEST_P(DescriptorTest, ClassSpecificTotalsCoverTheirOwnDescriptors)
{
    std::size_t wanted = 0;
    std::size_t sum = 0;
    for (Bytes const& part : split(configuration())) {
        bool const isVideo = part[1] == 0x24;
        if (isVideo && part[2] == 1 && part.size() >= 13) {
            wanted = readLittle(part, part[3] == 0x10 ? 5 : 4, 2);
            sum = 0;
        }
        if (isVideo && wanted > 0) {
            sum += part.size();
        } else if (wanted > 0) {
            EXPECT_EQ(sum, wanted);
            wanted = 0;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryModel, DescriptorTest,
                         testing::Values("ordinary", "vendor-old", "vendor-new",
                                         "vendor-new,speed=super", "vendor-new,speed=full",
                                         "vendor-old,extension-unit=no"));

TEST(DescriptorTest, AnswersOnlyWhatThereIs)
{
    CameraModel const model = parseModel("ordinary,manufacturer=");
    EXPECT_FALSE(makeDescriptor(model, 3, 1).has_value());
    EXPECT_EQ(makeDescriptor(model, 3, 2)->size(), 2 + 2 * model.product.size());
    EXPECT_FALSE(makeDescriptor(model, 3, 4).has_value());
    EXPECT_FALSE(makeDescriptor(model, 2, 1).has_value());
    EXPECT_FALSE(makeDescriptor(model, 15, 0).has_value());
    EXPECT_TRUE(makeDescriptor(parseModel("ordinary,speed=super"), 15, 0).has_value());
}

} // namespace

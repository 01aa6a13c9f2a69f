// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlStringMenu.h"
#include "serial/ZorvaneCameraControl.h"

#include <string>
#include <vector>

namespace ImageAcquisition
{

/// A serial-link control that is one of a list of texts.
class ZorvaneCameraControlStringMenu : public ZorvaneCameraControl,
                                       public virtual ICameraControlStringMenu
{
public:
    /// An item: the number that travels, and its text. The item's position is the menu's index.
    struct IndexSetting
    {
        int value;
        std::string label;
    };

    ZorvaneCameraControlStringMenu(LinkReference link, char const* name, int selector, int unit,
                                   Family family, std::vector<IndexSetting> settings);

    int count() const override { return static_cast<int>(m_settings.size()); }
    char const* string(int position) const override;
    /// That of the value last written when the camera does not answer.
    int currentIndex() const override;
    int defaultIndex() const override { return reverseMap(defaultValueNumber()); }
    bool setCurrentIndex(int position) override;
    char const* currentString() const override { return string(currentIndex()); }
    char const* defaultString() const override { return string(defaultIndex()); }

    /// The first position of a value, or -1.
    int reverseMap(int value) const;

private:
    std::vector<IndexSetting> m_settings;
};

} // namespace ImageAcquisition

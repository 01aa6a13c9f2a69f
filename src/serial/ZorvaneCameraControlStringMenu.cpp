// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlStringMenu.h"

#include <algorithm>

namespace ImageAcquisition
{

ZorvaneCameraControlStringMenu::ZorvaneCameraControlStringMenu(LinkReference link, char const* name,
                                                               int selector, int unit,
                                                               Family family,
                                                               std::vector<IndexSetting> settings)
    : ZorvaneCameraControl(link, name, selector, unit, family, StringMenu),
      m_settings(std::move(settings))
{
}

char const* ZorvaneCameraControlStringMenu::string(int position) const
{
    return m_settings.at(static_cast<std::size_t>(position)).label.c_str();
}

int ZorvaneCameraControlStringMenu::currentIndex() const
{
    long long value = 0;
    if (!readValue(value)) {
        value = currentValue();
    }
    return reverseMap(static_cast<int>(value));
}

bool ZorvaneCameraControlStringMenu::setCurrentIndex(int position)
{
    if (position < 0 || position >= count()) {
        return false;
    }
    return writeValue(m_settings[static_cast<std::size_t>(position)].value);
}

int ZorvaneCameraControlStringMenu::reverseMap(int value) const
{
    auto const found =
        std::find_if(m_settings.begin(), m_settings.end(),
                     [value](IndexSetting const& setting) { return setting.value == value; });
    return found == m_settings.end() ? -1 : static_cast<int>(found - m_settings.begin());
}

} // namespace ImageAcquisition

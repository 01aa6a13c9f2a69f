// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"
#include "system/ModuleExport.h"
#include "system/VideoNode.h"

#include <memory>
#include <vector>

namespace ImageAcquisition
{

/// The controls of one camera in the order in which they are listed, and the one that stands for
/// those it has not got.
class IMAGEACQUISITION_MODULE_EXPORT CameraControlSet
{
public:
    /// Whether @p a comes before @p b: by name, byte by byte.
    static bool inOrder(std::unique_ptr<ICameraControl> const& a,
                        std::unique_ptr<ICameraControl> const& b);

    /// Asks the driver for its controls, as far as a camera may have any, and lists them by name.
    /// The node must outlive the set.
    void fill(NodeReference node);

    /// Adds a control at the end. Null is ignored.
    void append(std::unique_ptr<ICameraControl> control);

    /// What the look-ups give for a control that is not in the set; null before.
    void setInvalid(std::unique_ptr<ICameraControl> control) { m_invalid = std::move(control); }
    ICameraControl* invalid() const { return m_invalid.get(); }

    int size() const { return static_cast<int>(m_controls.size()); }
    ICameraControl* at(int position) const;
    /// The first of this name; a null name is nobody's.
    ICameraControl* named(char const* name) const;
    /// The first of this id.
    ICameraControl* withId(unsigned int id) const;

private:
    template <typename Predicate>
    ICameraControl* find(Predicate predicate) const;

    std::vector<std::unique_ptr<ICameraControl>> m_controls;
    std::unique_ptr<ICameraControl> m_invalid;
};

} // namespace ImageAcquisition

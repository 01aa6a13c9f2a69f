// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/// A setting that is a text. Threads: the controls' thread.
class IMAGEACQUISITION_EXPORT ICameraControlString : public virtual ICameraControl
{
public:
    ~ICameraControlString() override;

    /// Bytes that a buffer for getValue() needs, the terminating zero included; 0 when the driver
    /// does not tell. Kernel drivers answer maxLength() + 1, whatever the present text.
    virtual unsigned int stringSize() const = 0;

    /**
     * @brief Reads the text.
     * @param buffer receives the zero-terminated text; not null.
     * @param size bytes at @p buffer; ask stringSize().
     * @return false when @p buffer is null, @p size is negative or too small, the control is
     * write-only, or the driver refused. The buffer's contents are then not to be used.
     */
    virtual bool getValue(char* buffer, int size) const = 0;

    /// Writes a zero-terminated text. False when @p value is null, the control refuses writes at
    /// present (read-only, disabled, inactive, grabbed: nothing is sent then), or the driver
    /// refused it; it decides about the length too.
    virtual bool setValue(char const* value) = 0;

    /// Smallest length in characters, as the driver says it.
    virtual int minLength() const = 0;

    /// Largest length in characters, as the driver says it.
    virtual int maxLength() const = 0;
};

} // namespace ImageAcquisition

// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>

namespace ImageAcquisition
{

/// errno as it was when this was made. A call of the library leaves errno alone unless something
/// failed; but on the way calls of the system may fail without harm.
class EarlierErrno
{
public:
    void restore() const { errno = m_value; }

    /// Hands the result of a call on: errno stays what it is with -1 and is restored otherwise.
    int unlessFailed(int result) const
    {
        if (result != -1) {
            restore();
        }
        return result;
    }

private:
    int const m_value = errno;
};

/// Leaves errno as it found it, whatever happens meanwhile.
class ErrnoKept
{
public:
    ErrnoKept() = default;
    ErrnoKept(ErrnoKept const&) = delete;
    ErrnoKept& operator=(ErrnoKept const&) = delete;
    ~ErrnoKept() { m_earlier.restore(); }

private:
    EarlierErrno const m_earlier{};
};

} // namespace ImageAcquisition

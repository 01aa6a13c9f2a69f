// SPDX-License-Identifier: MIT
#include "CameraSelection.h"

#include "Failure.h"
#include "Progress.h"

namespace Iacq
{

using namespace ImageAcquisition::Session;

namespace
{

Found find(std::string const& camera)
{
    try {
        return findCamera(camera);
    } catch (Error const& error) {
        bool const isOther = error.kind() == ErrorKind::Unsupported;
        throw Failure(isOther ? CameraFailed : NoSuchCamera, error.what());
    }
}

} // namespace

Camera openCamera(std::string const& camera)
{
    Found const found = find(camera);
    Progress const progress("opening " + found.node());
    return Camera::open(found);
}

} // namespace Iacq

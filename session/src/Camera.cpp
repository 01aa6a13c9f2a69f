// SPDX-License-Identifier: MIT
#include "session/Camera.h"

#include "ControlFinder.h"
#include "CurrentLayout.h"
#include "OpenCamera.h"
#include "OwnNode.h"
#include "SelectionSearch.h"
#include "SystemFailure.h"

#include <utility>

namespace ImageAcquisition::Session
{

Camera::Camera(std::shared_ptr<OpenCamera> camera) noexcept : m_camera(std::move(camera)) {}
Camera::Camera(Camera&& other) noexcept = default;
Camera& Camera::operator=(Camera&& other) noexcept = default;
Camera::~Camera() = default;

Camera Camera::open(std::string const& text)
{
    return open(findCamera(text));
}

Camera Camera::open(Found const& found)
{
    return Camera(std::make_shared<OpenCamera>(Connection::open(found)));
}

Found Camera::found() const
{
    return m_camera->connection()->found();
}

std::vector<FormatOffer> Camera::offers() const
{
    return m_camera->call([](auto const& present) { return offersOf(*present); });
}

Selection Camera::selection() const
{
    return m_camera->call([](auto const& present) {
        Selection selection = currentLayout(*present).selection;
        if (int const error =
                selection.format.empty() ? OwnNode(present->node()).openingError() : 0) {
            throw systemFailure("ask for the selection", present->found(), error);
        }
        return selection;
    });
}

Selection Camera::select(std::string const& text, Match match)
{
    return select(Selection::parse(text), match);
}

Selection Camera::select(Selection const& wish, Match match)
{
    return m_camera->call([&](auto const& present) { return selectOn(*present, wish, match); });
}

std::vector<Control> Camera::controls() const
{
    return ControlFinder(m_camera).all();
}

Control Camera::control(std::string const& name) const
{
    return ControlFinder(m_camera).named(name);
}

IBlockingCamera& Camera::interface() const
{
    return m_camera->connection()->camera();
}

} // namespace ImageAcquisition::Session

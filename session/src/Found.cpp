// SPDX-License-Identifier: MIT
#include "session/Found.h"

#include "device/Device.h"

#include <utility>

namespace ImageAcquisition::Session
{

Found::Found(IDevice const& record) : m_record(std::make_shared<Device>(&record)) {}

Found::Found(std::shared_ptr<IDevice const> record, std::string port)
    : m_record(std::move(record)), m_port(std::move(port))
{
}

IDevice const& Found::device() const noexcept
{
    return *m_record;
}

int Found::index() const
{
    return m_record->index();
}

std::string Found::node() const
{
    return m_record->systemName();
}

std::string Found::name() const
{
    return m_record->name();
}

std::string Found::serial() const
{
    return m_record->serial();
}

std::string Found::id() const
{
    return std::string(m_record->vendorId()) + ":" + m_record->productId();
}

std::string const& Found::port() const noexcept
{
    return m_port;
}

std::string Found::text() const
{
    if (!serial().empty()) {
        return "serial:" + serial();
    }
    return m_port.empty() ? node() : "port:" + m_port;
}

std::string Found::description() const
{
    return node() + " '" + name() + "'" + (serial().empty() ? "" : " serial:" + serial()) +
           (m_port.empty() ? "" : " port:" + m_port);
}

} // namespace ImageAcquisition::Session

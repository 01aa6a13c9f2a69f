// SPDX-License-Identifier: MIT
#include "UsbdevfsNode.h"

#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <list>
#include <stdexcept>
#include <utility>

namespace VirtualCamera
{

/// Lives as long as the handler's signal connection: umockdev answers in a thread of its own.
class UsbdevfsNode::Server
{
public:
    explicit Server(std::shared_ptr<UsbEndpointZero> endpoint) : m_endpoint(std::move(endpoint)) {}
    ~Server()
    {
        for (Finished& finished : m_finished) {
            g_object_unref(finished.block);
        }
    }

    static Server* make(std::shared_ptr<UsbEndpointZero> endpoint)
    {
        std::lock_guard const lock(handover());
        return new Server(std::move(endpoint));
    }
    static gboolean handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer server)
    {
        std::function<void()> afterwards;
        {
            std::lock_guard const lock(handover());
            auto* const own = static_cast<Server*>(server);
            own->serve(client);
            afterwards.swap(own->m_afterwards);
        }
        if (afterwards) {
            afterwards();
        }
        return TRUE;
    }
    static void destroy(gpointer server, GClosure*)
    {
        std::lock_guard const lock(handover());
        delete static_cast<Server*>(server);
    }

private:
    /// A request block that waits for its client to fetch it.
    struct Finished
    {
        UMockdevIoctlClient* client;
        UMockdevIoctlData* block;
    };

    /// Guards every server from being made in one thread, used in umockdev's and destroyed in
    /// either, in a way that the thread sanitizer can follow.
    static std::mutex& handover()
    {
        static std::mutex mutex;
        return mutex;
    }

    void serve(UMockdevIoctlClient* client);
    int submit(UMockdevIoctlClient* client);
    int reap(UMockdevIoctlClient* client);
    static int tellCapabilities(UMockdevIoctlClient* client);
    int run(UMockdevIoctlData* block, usbdevfs_urb& request);

    std::shared_ptr<UsbEndpointZero> m_endpoint;
    std::list<Finished> m_finished;
    std::function<void()> m_afterwards;
};

namespace
{

// The part of the client's memory that `parent` points to at `offset`; null when unreachable.
UMockdevIoctlData* pointedTo(UMockdevIoctlData* parent, std::size_t offset, std::size_t length)
{
    GError* error = nullptr;
    UMockdevIoctlData* const data = umockdev_ioctl_data_resolve(parent, offset, length, &error);
    g_clear_error(&error);
    return data;
}

template <typename Value>
void update(UMockdevIoctlData* data, std::size_t offset, Value value)
{
    guint8 bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    umockdev_ioctl_data_update(data, offset, bytes, sizeof bytes);
}

UsbRequest requestOf(guint8 const* setup)
{
    auto const word = [setup](int at) {
        return static_cast<std::uint16_t>(setup[at] | setup[at + 1] << 8);
    };
    return {setup[0], setup[1], word(2), word(4), word(6)};
}

} // namespace

void UsbdevfsNode::Server::serve(UMockdevIoctlClient* client)
{
    int error = 0;
    switch (umockdev_ioctl_client_get_request(client)) {
    case USBDEVFS_GET_CAPABILITIES:
        error = tellCapabilities(client);
        break;
    case USBDEVFS_SUBMITURB:
        error = submit(client);
        break;
    case USBDEVFS_REAPURB:
    case USBDEVFS_REAPURBNDELAY:
        error = reap(client);
        break;
    case USBDEVFS_CLAIMINTERFACE:
    case USBDEVFS_RELEASEINTERFACE:
    case USBDEVFS_SETCONFIGURATION:
        break;
    case USBDEVFS_DISCARDURB:
        error = EINVAL;
        break;
    default:
        error = ENOTTY;
        break;
    }
    umockdev_ioctl_client_complete(client, error == 0 ? 0 : -1, error);
}

int UsbdevfsNode::Server::tellCapabilities(UMockdevIoctlClient* client)
{
    UMockdevIoctlData* const data =
        pointedTo(umockdev_ioctl_client_get_arg(client), 0, sizeof(std::uint32_t));
    if (data == nullptr) {
        return EFAULT;
    }
    update(data, 0, std::uint32_t{0});
    g_object_unref(data);
    return 0;
}

int UsbdevfsNode::Server::submit(UMockdevIoctlClient* client)
{
    UMockdevIoctlData* const block =
        pointedTo(umockdev_ioctl_client_get_arg(client), 0, sizeof(usbdevfs_urb));
    if (block == nullptr) {
        return EFAULT;
    }
    usbdevfs_urb request{};
    std::memcpy(&request, block->data, sizeof request);
    int const error = run(block, request);
    if (error != 0) {
        g_object_unref(block);
    } else {
        m_finished.push_back({client, block});
    }
    return error;
}

int UsbdevfsNode::Server::run(UMockdevIoctlData* block, usbdevfs_urb& request)
{
    constexpr int setupLength = 8;
    if (request.type != USBDEVFS_URB_TYPE_CONTROL || request.buffer_length < setupLength) {
        return EINVAL;
    }
    UMockdevIoctlData* const buffer = pointedTo(block, offsetof(usbdevfs_urb, buffer),
                                                static_cast<std::size_t>(request.buffer_length));
    if (buffer == nullptr) {
        return EFAULT;
    }
    UsbEndpointZero::Reply reply = m_endpoint->answer(requestOf(buffer->data));
    std::size_t const room = static_cast<std::size_t>(request.buffer_length - setupLength);
    reply.bytes.resize(std::min(reply.bytes.size(), room));
    if (!reply.bytes.empty()) {
        umockdev_ioctl_data_update(buffer, setupLength, reply.bytes.data(),
                                   static_cast<gint>(reply.bytes.size()));
    }
    g_object_unref(buffer);
    update(block, offsetof(usbdevfs_urb, status), reply.stalled ? -EPIPE : 0);
    update(block, offsetof(usbdevfs_urb, actual_length), static_cast<int>(reply.bytes.size()));
    m_afterwards = reply.afterwards;
    return 0;
}

int UsbdevfsNode::Server::reap(UMockdevIoctlClient* client)
{
    auto const own = [client](Finished const& finished) { return finished.client == client; };
    auto const found = std::find_if(m_finished.begin(), m_finished.end(), own);
    if (found == m_finished.end()) {
        return EAGAIN;
    }
    UMockdevIoctlData* const pointer =
        pointedTo(umockdev_ioctl_client_get_arg(client), 0, sizeof(void*));
    if (pointer == nullptr) {
        return EFAULT;
    }
    umockdev_ioctl_data_set_ptr(pointer, 0, found->block);
    g_object_unref(pointer);
    g_object_unref(found->block);
    m_finished.erase(found);
    return 0;
}

UsbdevfsNode::UsbdevfsNode(UMockdevTestbed* testbed, std::string node,
                           std::shared_ptr<UsbEndpointZero> endpoint)
    : m_testbed(testbed), m_node(std::move(node)), m_handler(umockdev_ioctl_base_new())
{
    g_signal_connect_data(m_handler, "handle-ioctl", G_CALLBACK(Server::handle),
                          Server::make(std::move(endpoint)), Server::destroy, GConnectFlags{});
    GError* error = nullptr;
    if (umockdev_testbed_attach_ioctl(m_testbed, m_node.c_str(), m_handler, &error) == FALSE) {
        std::string const message = error != nullptr ? error->message : "unknown failure";
        g_clear_error(&error);
        g_object_unref(m_handler);
        throw std::runtime_error("cannot serve " + m_node + ": " + message);
    }
}

UsbdevfsNode::~UsbdevfsNode()
{
    umockdev_testbed_detach_ioctl(m_testbed, m_node.c_str(), nullptr);
    g_object_unref(m_handler);
}

} // namespace VirtualCamera

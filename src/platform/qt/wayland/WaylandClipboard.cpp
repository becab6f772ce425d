#include "platform/qt/wayland/WaylandClipboard.h"

#include "ext-data-control-client-protocol.h"
#include "platform/qt/wayland/PipeWriter.h"
#include "wlr-data-control-client-protocol.h"

#include <QDeadlineTimer>
#include <QSocketNotifier>

#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <vector>
#include <wayland-client.h>

namespace {

// The two data-control protocols have the same requests and events in the same order; only the
// interface names differ. One writer drives both through the interface tables of the one the
// compositor offers.
struct DataControlInterfaces
{
    const wl_interface *manager;
    const wl_interface *device;
    const wl_interface *source;
};

const DataControlInterfaces g_extInterfaces{&ext_data_control_manager_v1_interface,
                                            &ext_data_control_device_v1_interface,
                                            &ext_data_control_source_v1_interface};
const DataControlInterfaces g_wlrInterfaces{&zwlr_data_control_manager_v1_interface,
                                            &zwlr_data_control_device_v1_interface,
                                            &zwlr_data_control_source_v1_interface};

constexpr uint32_t kCreateDataSource = ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE;
constexpr uint32_t kGetDataDevice = ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE;
constexpr uint32_t kManagerDestroy = ZWLR_DATA_CONTROL_MANAGER_V1_DESTROY;
constexpr uint32_t kSetSelection = ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION;
constexpr uint32_t kDeviceDestroy = ZWLR_DATA_CONTROL_DEVICE_V1_DESTROY;
constexpr uint32_t kOffer = ZWLR_DATA_CONTROL_SOURCE_V1_OFFER;
constexpr uint32_t kSourceDestroy = ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY;
constexpr uint32_t kOfferDestroy = ZWLR_DATA_CONTROL_OFFER_V1_DESTROY;
static_assert(kCreateDataSource == EXT_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE &&
              kGetDataDevice == EXT_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE &&
              kManagerDestroy == EXT_DATA_CONTROL_MANAGER_V1_DESTROY &&
              kSetSelection == EXT_DATA_CONTROL_DEVICE_V1_SET_SELECTION &&
              kDeviceDestroy == EXT_DATA_CONTROL_DEVICE_V1_DESTROY &&
              kOffer == EXT_DATA_CONTROL_SOURCE_V1_OFFER &&
              kSourceDestroy == EXT_DATA_CONTROL_SOURCE_V1_DESTROY &&
              kOfferDestroy == EXT_DATA_CONTROL_OFFER_V1_DESTROY);

// Listener tables in the shape both protocols share.
struct DeviceListener
{
    void (*dataOffer)(void *data, wl_proxy *device, wl_proxy *offer);
    void (*selection)(void *data, wl_proxy *device, wl_proxy *offer);
    void (*finished)(void *data, wl_proxy *device);
};

struct SourceListener
{
    void (*send)(void *data, wl_proxy *source, const char *mimeType, int32_t fd);
    void (*cancelled)(void *data, wl_proxy *source);
};

void Destroy(wl_proxy *proxy, uint32_t destroyOpcode)
{
    wl_proxy_marshal_flags(proxy, destroyOpcode, nullptr, wl_proxy_get_version(proxy),
                           WL_MARSHAL_FLAG_DESTROY);
}

} // namespace

struct WaylandClipboard::Connection
{
    wl_display *display = nullptr;
    wl_registry *registry = nullptr;
    uint32_t seatName = 0;
    uint32_t extName = 0;
    uint32_t wlrName = 0;
    wl_proxy *seat = nullptr;
    wl_proxy *manager = nullptr;
    wl_proxy *device = nullptr;
    const DataControlInterfaces *interfaces = nullptr;
    Protocol protocol = Protocol::None;
    // Offers of the current selection the compositor announces to every data-control client;
    // the writer never reads them and drops each at the next selection.
    std::vector<wl_proxy *> offers;
    std::unique_ptr<QSocketNotifier> notifier;
    bool broken = false;

    bool usable() const { return device && !broken; }

    ~Connection()
    {
        notifier.reset();
        for (wl_proxy *offer : offers)
            Destroy(offer, kOfferDestroy);
        if (device)
            Destroy(device, kDeviceDestroy);
        if (manager)
            Destroy(manager, kManagerDestroy);
        if (seat)
            wl_proxy_destroy(seat);
        if (registry)
            wl_registry_destroy(registry);
        if (display) {
            wl_display_flush(display);
            wl_display_disconnect(display);
        }
    }
};

struct WaylandClipboard::Source
{
    WaylandClipboard *owner = nullptr;
    wl_proxy *proxy = nullptr;
    QByteArray bytes;
    // A source can be set as the selection once only.
    bool offered = false;
};

namespace {

void RegistryGlobal(void *data, wl_registry *, uint32_t name, const char *interface, uint32_t)
{
    auto *connection = static_cast<WaylandClipboard::Connection *>(data);
    const QByteArray interfaceName(interface);
    if (interfaceName == wl_seat_interface.name && connection->seatName == 0)
        connection->seatName = name; // the first seat is the default one
    else if (interfaceName == ext_data_control_manager_v1_interface.name)
        connection->extName = name;
    else if (interfaceName == zwlr_data_control_manager_v1_interface.name)
        connection->wlrName = name;
}

void RegistryGlobalRemove(void *data, wl_registry *, uint32_t name)
{
    auto *connection = static_cast<WaylandClipboard::Connection *>(data);
    if (connection->seat && name == connection->seatName)
        connection->broken = true;
}

const wl_registry_listener g_registryListener{RegistryGlobal, RegistryGlobalRemove};

const DeviceListener g_deviceListener{
    [](void *data, wl_proxy *, wl_proxy *offer) {
        static_cast<WaylandClipboard::Connection *>(data)->offers.push_back(offer);
    },
    [](void *data, wl_proxy *, wl_proxy *) {
        auto *connection = static_cast<WaylandClipboard::Connection *>(data);
        for (wl_proxy *offer : connection->offers)
            Destroy(offer, kOfferDestroy);
        connection->offers.clear();
    },
    [](void *data, wl_proxy *) {
        // The seat is gone; the next write connects afresh.
        static_cast<WaylandClipboard::Connection *>(data)->broken = true;
    }};

} // namespace

WaylandClipboard::WaylandClipboard(const QByteArray &displayName)
    : m_displayName(displayName.isEmpty() ? qgetenv("WAYLAND_DISPLAY") : displayName)
{
    connectToCompositor();
}

WaylandClipboard::~WaylandClipboard()
{
    dropSource();
}

bool WaylandClipboard::isAvailable() const
{
    return m_connection && m_connection->usable();
}

WaylandClipboard::Protocol WaylandClipboard::protocol() const
{
    return isAvailable() ? m_connection->protocol : Protocol::None;
}

QStringList WaylandClipboard::offeredMimeTypes()
{
    return {QStringLiteral("text/plain;charset=utf-8"), QStringLiteral("text/plain"),
            QStringLiteral("UTF8_STRING"), QStringLiteral("TEXT"), QStringLiteral("STRING")};
}

void WaylandClipboard::connectToCompositor()
{
    dropSource();
    m_connection.reset();
    // Without a socket name libwayland would guess "wayland-0", which may be someone else's.
    if (m_displayName.isEmpty())
        return;
    auto connection = std::make_unique<Connection>();
    connection->display = wl_display_connect(m_displayName.constData());
    if (!connection->display)
        return;
    m_connection = std::move(connection);
    Connection &c = *m_connection;
    c.registry = wl_display_get_registry(c.display);
    wl_registry_add_listener(c.registry, &g_registryListener, &c);
    if (!sync() || c.seatName == 0 || (c.extName == 0 && c.wlrName == 0)) {
        m_connection.reset();
        return;
    }
    // The standardised protocol where the compositor has both.
    const bool ext = c.extName != 0;
    c.protocol = ext ? Protocol::Ext : Protocol::Wlr;
    c.interfaces = ext ? &g_extInterfaces : &g_wlrInterfaces;
    c.seat =
        static_cast<wl_proxy *>(wl_registry_bind(c.registry, c.seatName, &wl_seat_interface, 1));
    c.manager = static_cast<wl_proxy *>(
        wl_registry_bind(c.registry, ext ? c.extName : c.wlrName, c.interfaces->manager, 1));
    c.device = wl_proxy_marshal_flags(c.manager, kGetDataDevice, c.interfaces->device,
                                      wl_proxy_get_version(c.manager), 0, nullptr, c.seat);
    wl_proxy_add_listener(
        c.device,
        reinterpret_cast<void (**)(void)>(const_cast<DeviceListener *>(&g_deviceListener)), &c);
    c.notifier =
        std::make_unique<QSocketNotifier>(wl_display_get_fd(c.display), QSocketNotifier::Read);
    connect(c.notifier.get(), &QSocketNotifier::activated, this, &WaylandClipboard::dispatchEvents);
    if (!sync())
        m_connection.reset();
}

int WaylandClipboard::writeUtf8PlainText(const QByteArray &bytes)
{
    if (!isAvailable())
        connectToCompositor();
    if (!isAvailable())
        return -1;
    // Destroying the source that holds the selection empties the clipboard; the new text comes
    // on a source of its own.
    if (!createSource())
        return -1;
    Source &source = *m_source;
    source.bytes = bytes;
    for (const QString &type : offeredMimeTypes())
        wl_proxy_marshal_flags(source.proxy, kOffer, nullptr, wl_proxy_get_version(source.proxy), 0,
                               type.toUtf8().constData());
    source.offered = true;
    wl_proxy_marshal_flags(m_connection->device, kSetSelection, nullptr,
                           wl_proxy_get_version(m_connection->device), 0, source.proxy);
    // A refused selection is a protocol error, which arrives before the answer to this sync.
    if (!sync()) {
        markBroken();
        return -1;
    }
    return 0;
}

bool WaylandClipboard::createSource()
{
    static const SourceListener listener{[](void *data, wl_proxy *, const char *, int32_t fd) {
                                             auto *source = static_cast<Source *>(data);
                                             source->owner->answerPaste(*source, fd);
                                         },
                                         [](void *data, wl_proxy *) {
                                             auto *source = static_cast<Source *>(data);
                                             source->owner->sourceCancelled(*source);
                                         }};
    dropSource();
    Connection &c = *m_connection;
    auto source = std::make_unique<Source>();
    source->owner = this;
    source->proxy = wl_proxy_marshal_flags(c.manager, kCreateDataSource, c.interfaces->source,
                                           wl_proxy_get_version(c.manager), 0, nullptr);
    if (!source->proxy)
        return false;
    wl_proxy_add_listener(
        source->proxy, reinterpret_cast<void (**)(void)>(const_cast<SourceListener *>(&listener)),
        source.get());
    m_source = std::move(source);
    return true;
}

void WaylandClipboard::dropSource()
{
    if (!m_source)
        return;
    if (m_connection && m_source->proxy)
        Destroy(m_source->proxy, kSourceDestroy);
    m_source.reset();
}

void WaylandClipboard::answerPaste(Source &source, int fd)
{
    // Every type we offer carries the same bytes.
    PipeWriter::start(fd, source.bytes, this);
}

void WaylandClipboard::sourceCancelled(Source &source)
{
    // Another program took the clipboard: this text is no longer served.
    if (m_source.get() == &source)
        dropSource();
    flush();
}

void WaylandClipboard::dispatchEvents()
{
    if (!m_connection)
        return;
    if (!readAndDispatch(0) || m_connection->broken)
        markBroken();
}

void WaylandClipboard::markBroken()
{
    if (!m_connection)
        return;
    m_connection->broken = true;
    // A connection that is gone stays readable for ever; stop listening to it.
    if (m_connection->notifier)
        m_connection->notifier->setEnabled(false);
}

bool WaylandClipboard::flush()
{
    wl_display *display = m_connection->display;
    while (wl_display_flush(display) < 0) {
        if (errno != EAGAIN)
            return false;
        pollfd pfd{wl_display_get_fd(display), POLLOUT, 0};
        if (::poll(&pfd, 1, kCompositorTimeoutMs) <= 0)
            return false;
    }
    return true;
}

bool WaylandClipboard::readAndDispatch(int timeoutMs)
{
    wl_display *display = m_connection->display;
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0)
            return false;
    }
    if (!flush()) {
        wl_display_cancel_read(display);
        return false;
    }
    pollfd pfd{wl_display_get_fd(display), POLLIN, 0};
    const int ready = ::poll(&pfd, 1, timeoutMs);
    if (ready <= 0) {
        wl_display_cancel_read(display);
        return ready == 0 || errno == EINTR;
    }
    if (wl_display_read_events(display) < 0)
        return false;
    return wl_display_dispatch_pending(display) >= 0 && flush();
}

bool WaylandClipboard::sync()
{
    static const wl_callback_listener listener{[](void *data, wl_callback *callback, uint32_t) {
        *static_cast<bool *>(data) = true;
        wl_callback_destroy(callback);
    }};
    bool done = false;
    wl_callback *callback = wl_display_sync(m_connection->display);
    wl_callback_add_listener(callback, &listener, &done);
    const QDeadlineTimer deadline(kCompositorTimeoutMs);
    while (!done) {
        if (deadline.hasExpired() || !readAndDispatch(static_cast<int>(deadline.remainingTime()))) {
            wl_callback_destroy(callback);
            return false;
        }
    }
    return wl_display_get_error(m_connection->display) == 0;
}

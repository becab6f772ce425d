#include "FakeCompositor.h"

#include "ext-data-control-server-protocol.h"
#include "wlr-data-control-server-protocol.h"

#include <cstdint>
#include <fcntl.h>
#include <future>
#include <stdexcept>
#include <sys/eventfd.h>
#include <unistd.h>
#include <wayland-server.h>

// Both data-control protocols have the same shape; one set of handlers serves either, told
// apart by the interface name of the resource.
struct FakeCompositor::Handlers
{
    static FakeCompositor &of(wl_resource *resource)
    {
        return *static_cast<FakeCompositor *>(wl_resource_get_user_data(resource));
    }

    // A source's user data: its compositor and its place in the record.
    struct SourceHandle
    {
        FakeCompositor *compositor;
        int index;
    };

    static SourceHandle &handle(wl_resource *source)
    {
        return *static_cast<SourceHandle *>(wl_resource_get_user_data(source));
    }

    static void offer(wl_client *, wl_resource *source, const char *mimeType)
    {
        const SourceHandle &h = handle(source);
        const std::lock_guard lock(h.compositor->m_mutex);
        h.compositor->m_sources.at(static_cast<size_t>(h.index))
            .types.append(QString::fromUtf8(mimeType));
    }

    static void destroyRequest(wl_client *, wl_resource *resource)
    {
        wl_resource_destroy(resource);
    }

    static void sourceDestroyed(wl_resource *source)
    {
        const std::unique_ptr<SourceHandle> h(&handle(source));
        FakeCompositor &compositor = *h->compositor;
        const std::lock_guard lock(compositor.m_mutex);
        compositor.m_sources.at(static_cast<size_t>(h->index)).destroyed = true;
        compositor.m_sources.at(static_cast<size_t>(h->index)).resource = nullptr;
        // A destroyed source no longer holds the selection.
        if (compositor.m_selection == h->index)
            compositor.m_selection = -1;
    }

    static void setSelection(wl_client *, wl_resource *device, wl_resource *source)
    {
        FakeCompositor &compositor = of(device);
        const int index = source ? handle(source).index : -1;
        wl_resource *previous = nullptr;
        {
            const std::lock_guard lock(compositor.m_mutex);
            if (compositor.m_selection >= 0 && compositor.m_selection != index)
                previous =
                    compositor.m_sources.at(static_cast<size_t>(compositor.m_selection)).resource;
            compositor.m_selection = index;
        }
        // The source that loses the selection is told so, as a real compositor does.
        if (previous)
            wl_resource_post_event(previous, ZWLR_DATA_CONTROL_SOURCE_V1_CANCELLED);
    }

    static void createDataSource(wl_client *client, wl_resource *manager, uint32_t id)
    {
        FakeCompositor &compositor = of(manager);
        const bool ext = QByteArray(wl_resource_get_class(manager)) ==
                         ext_data_control_manager_v1_interface.name;
        const wl_interface *interface =
            ext ? &ext_data_control_source_v1_interface : &zwlr_data_control_source_v1_interface;
        wl_resource *source = wl_resource_create(client, interface, 1, id);
        static const struct zwlr_data_control_source_v1_interface implementation
        {
            offer, destroyRequest
        };
        int index = 0;
        {
            const std::lock_guard lock(compositor.m_mutex);
            index = static_cast<int>(compositor.m_sources.size());
            compositor.m_sources.push_back({interface->name, {}, false, source});
        }
        wl_resource_set_implementation(source, &implementation,
                                       new SourceHandle{&compositor, index}, sourceDestroyed);
    }

    static void getDataDevice(wl_client *client, wl_resource *manager, uint32_t id, wl_resource *)
    {
        const bool ext = QByteArray(wl_resource_get_class(manager)) ==
                         ext_data_control_manager_v1_interface.name;
        wl_resource *device = wl_resource_create(client,
                                                 ext ? &ext_data_control_device_v1_interface
                                                     : &zwlr_data_control_device_v1_interface,
                                                 1, id);
        static const struct zwlr_data_control_device_v1_interface implementation
        {
            setSelection, destroyRequest
        };
        wl_resource_set_implementation(device, &implementation, &of(manager), nullptr);
    }

    static void bindManager(wl_client *client, void *data, uint32_t version, uint32_t id,
                            const wl_interface *interface)
    {
        wl_resource *manager = wl_resource_create(client, interface, static_cast<int>(version), id);
        static const struct zwlr_data_control_manager_v1_interface implementation
        {
            createDataSource, getDataDevice, destroyRequest
        };
        wl_resource_set_implementation(manager, &implementation, data, nullptr);
    }

    static void bindExt(wl_client *client, void *data, uint32_t version, uint32_t id)
    {
        bindManager(client, data, version, id, &ext_data_control_manager_v1_interface);
    }

    static void bindWlr(wl_client *client, void *data, uint32_t version, uint32_t id)
    {
        bindManager(client, data, version, id, &zwlr_data_control_manager_v1_interface);
    }

    static void bindSeat(wl_client *client, void *, uint32_t version, uint32_t id)
    {
        // The writer makes no requests on the seat; it only names it.
        wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
    }

    static int wake(int fd, uint32_t, void *data)
    {
        uint64_t count = 0;
        if (::read(fd, &count, sizeof count) < 0)
            return 0;
        FakeCompositor &compositor = *static_cast<FakeCompositor *>(data);
        std::vector<std::function<void()>> queue;
        {
            const std::lock_guard lock(compositor.m_mutex);
            queue.swap(compositor.m_queue);
        }
        for (const auto &f : queue)
            f();
        return 0;
    }
};

FakeCompositor::FakeCompositor(const QByteArray &socketName, Globals globals)
    : m_display(wl_display_create())
{
    if (wl_display_add_socket(m_display, socketName.constData()) != 0)
        throw std::runtime_error("the compositor's socket is taken");
    if (globals.seat)
        wl_global_create(m_display, &wl_seat_interface, 1, this, Handlers::bindSeat);
    if (globals.ext)
        wl_global_create(m_display, &ext_data_control_manager_v1_interface, 1, this,
                         Handlers::bindExt);
    if (globals.wlr)
        wl_global_create(m_display, &zwlr_data_control_manager_v1_interface, 1, this,
                         Handlers::bindWlr);
    m_wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    m_wakeSource = wl_event_loop_add_fd(wl_display_get_event_loop(m_display), m_wakeFd,
                                        WL_EVENT_READABLE, Handlers::wake, this);
    m_thread = std::thread([this] { serve(); });
}

FakeCompositor::~FakeCompositor()
{
    m_stop = true;
    const uint64_t one = 1;
    (void)::write(m_wakeFd, &one, sizeof one);
    m_thread.join();
    wl_display_destroy_clients(m_display);
    wl_event_source_remove(m_wakeSource);
    wl_display_destroy(m_display);
    ::close(m_wakeFd);
}

void FakeCompositor::serve()
{
    wl_event_loop *loop = wl_display_get_event_loop(m_display);
    while (!m_stop) {
        wl_event_loop_dispatch(loop, 50);
        wl_display_flush_clients(m_display);
    }
}

void FakeCompositor::runOnServer(const std::function<void()> &f)
{
    std::promise<void> done;
    {
        const std::lock_guard lock(m_mutex);
        m_queue.push_back([&] {
            f();
            wl_display_flush_clients(m_display);
            done.set_value();
        });
    }
    const uint64_t one = 1;
    (void)::write(m_wakeFd, &one, sizeof one);
    done.get_future().wait();
}

int FakeCompositor::sourceCount() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_sources.size());
}

FakeCompositor::SourceRecord FakeCompositor::source(int index) const
{
    const std::lock_guard lock(m_mutex);
    return m_sources.at(static_cast<size_t>(index));
}

int FakeCompositor::selectionIndex() const
{
    const std::lock_guard lock(m_mutex);
    return m_selection;
}

int FakeCompositor::postSend(const QByteArray &mimeType, int writeFd)
{
    int posted = -1;
    runOnServer([&] {
        wl_resource *owner = nullptr;
        {
            const std::lock_guard lock(m_mutex);
            if (m_selection >= 0)
                owner = m_sources.at(static_cast<size_t>(m_selection)).resource;
        }
        if (!owner)
            return;
        // The event carries a duplicate of the fd; ours is closed below either way.
        wl_resource_post_event(owner, ZWLR_DATA_CONTROL_SOURCE_V1_SEND, mimeType.constData(),
                               writeFd);
        posted = 0;
    });
    ::close(writeFd);
    return posted;
}

int FakeCompositor::requestPaste(const QByteArray &mimeType)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    if (postSend(mimeType, fds[1]) != 0) {
        ::close(fds[0]);
        return -1;
    }
    return fds[0];
}

int FakeCompositor::requestStalledPaste(const QByteArray &mimeType)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    const QByteArray filler(4096, '.');
    while (::write(fds[1], filler.constData(), static_cast<size_t>(filler.size())) > 0) {
    }
    if (postSend(mimeType, fds[1]) != 0) {
        ::close(fds[0]);
        return -1;
    }
    return fds[0];
}

void FakeCompositor::takeSelection()
{
    runOnServer([this] {
        wl_resource *owner = nullptr;
        {
            const std::lock_guard lock(m_mutex);
            if (m_selection >= 0)
                owner = m_sources.at(static_cast<size_t>(m_selection)).resource;
            m_selection = -1;
        }
        if (owner)
            wl_resource_post_event(owner, ZWLR_DATA_CONTROL_SOURCE_V1_CANCELLED);
    });
}

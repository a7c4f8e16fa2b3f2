#include "platform/linux/SecretServiceClient.h"

#include <libsecret/secret.h>

#include <string_view>
#include <utility>

namespace {

constexpr guint kLimitMilliseconds = 2000;
constexpr const char *kLabel = "Tessery server password";

struct GLibDeleter {
    void operator()(GMainContext *context) const { g_main_context_unref(context); }
    void operator()(GHashTable *table) const { g_hash_table_unref(table); }
    void operator()(GSource *source) const
    {
        g_source_destroy(source);
        g_source_unref(source);
    }
    void operator()(SecretValue *value) const { secret_value_unref(value); }
    template <typename Object>
    void operator()(Object *object) const
    {
        g_object_unref(object);
    }
};

template <typename T>
using GLibPointer = std::unique_ptr<T, GLibDeleter>;

/// Takes what a GLib function gives as a new reference.
template <typename T>
GLibPointer<T> owned(T *pointer)
{
    return GLibPointer<T>(pointer);
}

/// Where a GLib function puts its error.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ErrorSlot(const ErrorSlot &) = delete;
    ErrorSlot &operator=(const ErrorSlot &) = delete;
    ~ErrorSlot() { g_clear_error(&m_error); }

    GError **out() { return &m_error; }

    /// What the error, if there is one, says about the service.
    SecretServiceClient::Status status() const
    {
        if (!m_error)
            return SecretServiceClient::Status::Failed;
        const std::unique_ptr<char, decltype(&g_free)> name(g_dbus_error_get_remote_error(m_error),
                                                            &g_free);
        const std::string_view view(name ? name.get() : "");
        const bool absent = view == "org.freedesktop.DBus.Error.ServiceUnknown"
            || view == "org.freedesktop.DBus.Error.NameHasNoOwner"
            || view.starts_with("org.freedesktop.DBus.Error.Spawn.")
            || view.starts_with("org.freedesktop.systemd1.")
            || g_error_matches(m_error, G_IO_ERROR, G_IO_ERROR_CLOSED);
        return absent ? SecretServiceClient::Status::NoService
                      : SecretServiceClient::Status::Failed;
    }

private:
    GError *m_error = nullptr;
};

GLibPointer<GHashTable> attributes(const QString &service, const QString &account)
{
    GLibPointer<GHashTable> table(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free));
    g_hash_table_insert(table.get(), g_strdup("service"), g_strdup(service.toUtf8().constData()));
    g_hash_table_insert(table.get(), g_strdup("account"), g_strdup(account.toUtf8().constData()));
    return table;
}

} // namespace

/// One question to the service: a series of asynchronous operations on the client's own context,
/// all within the limit. libsecret's synchronous functions are of no use, for a cancellation does
/// not interrupt all of them.
class SecretServiceClient::Call {
public:
    explicit Call(GMainContext *context)
        : m_context(context)
        , m_cancellable(g_cancellable_new())
        , m_limit(g_timeout_source_new(kLimitMilliseconds))
    {
        // What the service has told since the last call may be that it has gone.
        dispatchReady();
        g_main_context_push_thread_default(m_context);
        g_source_set_callback(m_limit.get(), &Call::expire, m_cancellable.get(), nullptr);
        g_source_attach(m_limit.get(), m_context);
    }
    ~Call()
    {
        dispatchReady();
        g_main_context_pop_thread_default(m_context);
    }
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

    /// Starts an operation and waits for its result; null when the limit strikes first.
    template <typename Start>
    GLibPointer<GAsyncResult> result(Start start)
    {
        // The operation may report its cancellation long after this call.
        const auto slot = std::make_shared<GLibPointer<GAsyncResult>>();
        start(m_cancellable.get(), &Call::keepResult,
              std::make_unique<std::shared_ptr<GLibPointer<GAsyncResult>>>(slot).release());
        while (!*slot && !g_cancellable_is_cancelled(m_cancellable.get()))
            g_main_context_iteration(m_context, TRUE);
        return std::move(*slot);
    }

    /// The session bus.
    GLibPointer<GDBusConnection> connect()
    {
        const auto got =
            result([](GCancellable *cancellable, GAsyncReadyCallback callback, gpointer data) {
                g_bus_get(G_BUS_TYPE_SESSION, cancellable, callback, data);
            });
        ErrorSlot error;
        GLibPointer<GDBusConnection> connection(got ? g_bus_get_finish(got.get(), error.out())
                                                    : nullptr);
        if (connection)
            g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
        else if (got && !g_cancellable_is_cancelled(m_cancellable.get()))
            m_status = Status::NoService;
        return connection;
    }

    /// The service, with a session open.
    GLibPointer<SecretService> service()
    {
        const auto got =
            result([](GCancellable *cancellable, GAsyncReadyCallback callback, gpointer data) {
                secret_service_get(SECRET_SERVICE_OPEN_SESSION, cancellable, callback, data);
            });
        ErrorSlot error;
        GLibPointer<SecretService> service(got ? secret_service_get_finish(got.get(), error.out())
                                               : nullptr);
        m_status = error.status();
        return service;
    }

    /// The secret of the item with these attributes, null if there is none to be read.
    GLibPointer<SecretValue> secret(SecretService *service, GHashTable *attributes)
    {
        const auto got =
            result([&](GCancellable *cancellable, GAsyncReadyCallback callback, gpointer data) {
                secret_service_search(service, nullptr, attributes, SECRET_SEARCH_LOAD_SECRETS,
                                      cancellable, callback, data);
            });
        if (!got)
            return nullptr;
        ErrorSlot error;
        GList *items = secret_service_search_finish(service, got.get(), error.out());
        m_status = *error.out() ? error.status() : Status::Done;
        GLibPointer<SecretValue> value(
            items ? secret_item_get_secret(static_cast<SecretItem *>(items->data)) : nullptr);
        if (items && !value)
            m_status = Status::NotUsable;
        g_list_free_full(items, g_object_unref);
        return value;
    }

    /// Whether a secret can be stored without anybody being asked.
    bool canStore(SecretService *service)
    {
        const auto got =
            result([&](GCancellable *cancellable, GAsyncReadyCallback callback, gpointer data) {
                secret_collection_for_alias(service, SECRET_COLLECTION_DEFAULT,
                                            SECRET_COLLECTION_NONE, cancellable, callback, data);
            });
        if (!got)
            return false;
        ErrorSlot error;
        const auto collection = owned(secret_collection_for_alias_finish(got.get(), error.out()));
        m_status = *error.out() ? error.status() : Status::NotUsable;
        return collection && !secret_collection_get_locked(collection.get());
    }

    void store(SecretService *service, GHashTable *attributes, SecretValue *value)
    {
        const auto got =
            result([&](GCancellable *cancellable, GAsyncReadyCallback callback, gpointer data) {
                secret_service_store(service, nullptr, attributes, SECRET_COLLECTION_DEFAULT,
                                     kLabel, value, cancellable, callback, data);
            });
        ErrorSlot error;
        const bool stored = got && secret_service_store_finish(service, got.get(), error.out());
        m_status = stored ? Status::Done : error.status();
    }

    Status status() const { return m_status; }

private:
    static gboolean expire(gpointer cancellable)
    {
        g_cancellable_cancel(static_cast<GCancellable *>(cancellable));
        return G_SOURCE_REMOVE;
    }

    static void keepResult(GObject *, GAsyncResult *result, gpointer data)
    {
        const std::unique_ptr<std::shared_ptr<GLibPointer<GAsyncResult>>> slot(
            static_cast<std::shared_ptr<GLibPointer<GAsyncResult>> *>(data));
        g_object_ref(result);
        (*slot)->reset(result);
    }

    void dispatchReady()
    {
        while (g_main_context_iteration(m_context, FALSE)) { }
    }

    GMainContext *m_context;
    GLibPointer<GCancellable> m_cancellable;
    GLibPointer<GSource> m_limit;
    Status m_status = Status::Failed;
};

/// What stays from call to call.
struct SecretServiceClient::Connection {
    /// The service, connected to the bus if need be; null if there is no bus or no service.
    GLibPointer<SecretService> service(Call &call)
    {
        if (!bus)
            bus = call.connect();
        return bus ? call.service() : nullptr;
    }

    GLibPointer<GMainContext> context{g_main_context_new()};
    GLibPointer<GDBusConnection> bus;
};

SecretServiceClient::SecretServiceClient() : m_connection(std::make_unique<Connection>())
{
}

SecretServiceClient::~SecretServiceClient()
{
    secret_service_disconnect();
    m_connection->bus.reset();
    while (g_main_context_iteration(m_connection->context.get(), FALSE)) { }
}

SecretServiceClient::Answer SecretServiceClient::read(const QString &service,
                                                      const QString &account)
{
    Call call(m_connection->context.get());
    const auto secrets = m_connection->service(call);
    const auto value =
        secrets ? call.secret(secrets.get(), attributes(service, account).get()) : nullptr;
    Answer answer{call.status(), std::nullopt};
    if (value) {
        gsize length = 0;
        const gchar *text = secret_value_get(value.get(), &length);
        answer.secret = QByteArray(text, static_cast<qsizetype>(length));
    }
    return answer;
}

SecretServiceClient::Status
SecretServiceClient::write(const QString &service, const QString &account, const QByteArray &secret)
{
    Call call(m_connection->context.get());
    const auto secrets = m_connection->service(call);
    if (secrets && call.canStore(secrets.get())) {
        const auto value = owned(secret_value_new(secret.constData(), secret.size(), "text/plain"));
        call.store(secrets.get(), attributes(service, account).get(), value.get());
    }
    return call.status();
}

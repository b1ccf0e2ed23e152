#include "keldo-diskutil/UDisks.h"

#include "keldo-diskutil/BlockDevice.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>
#include <gio/gio.h>
#include <sys/sysmacros.h>

namespace keldo_diskutil {

namespace {

using ReelCore::URL;

const std::string service = "org.freedesktop.UDisks2";
const std::string manager = "/org/freedesktop/UDisks2/Manager";
const std::string managerInterface = service + ".Manager";
const std::string blockInterface = service + ".Block";
const std::string fileSystemInterface = service + ".Filesystem";
const std::string errors = service + ".Error.";

[[noreturn]] void throwAndFree(GError* error) {
    const std::unique_ptr<gchar, void (*)(void*)> name(g_dbus_error_get_remote_error(error),
                                                       g_free);
    g_dbus_error_strip_remote_error(error);
    std::string sentence = error->message;
    g_error_free(error);
    std::ranges::replace(sentence, '\n', ' ');
    sentence.erase(sentence.find_last_not_of(' ') + 1);
    throw UDisksError(sentence, name ? name.get() : "");
}

GDBusConnection* connect() {
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error);
    if (!bus) throwAndFree(error);
    // A bus that goes away in the middle of an erase is an error to be told, not to die of.
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    return bus;
}

GVariant* noOptions() {
    return g_variant_new("(a{sv})", nullptr);
}

std::string text(GVariant* value) {
    return g_variant_get_string(value, nullptr);
}

}  // namespace

bool UDisksError::isBusy() const noexcept {
    return name_ == errors + "DeviceBusy";
}

bool UDisksError::isNotAllowed() const noexcept {
    return name_.starts_with(errors + "NotAuthorized");
}

bool UDisksError::isAlreadyMounted() const noexcept {
    return name_ == errors + "AlreadyMounted";
}

bool UDisksError::isFailure() const noexcept {
    return name_ == errors + "Failed";
}

UDisks::UDisks() : bus_(connect(), g_object_unref) {
    property(manager, managerInterface, "Version", "s");
}

UDisks::Variant UDisks::call(const std::string& object, const std::string& interface,
                             const char* method, GVariant* parameters,
                             const char* answerType) const {
    constexpr int withoutLimit = std::numeric_limits<int>::max();
    GError* error = nullptr;
    Variant answer(
        g_dbus_connection_call_sync(bus_.get(), service.c_str(), object.c_str(), interface.c_str(),
                                    method, parameters, G_VARIANT_TYPE(answerType),
                                    G_DBUS_CALL_FLAGS_ALLOW_INTERACTIVE_AUTHORIZATION, withoutLimit,
                                    nullptr, &error),
        g_variant_unref);
    if (!answer) throwAndFree(error);
    return answer;
}

UDisks::Variant UDisks::property(const std::string& object, const std::string& interface,
                                 const char* name, const char* type) const {
    const Variant answer = call(object, "org.freedesktop.DBus.Properties", "Get",
                                g_variant_new("(ss)", interface.c_str(), name), "(v)");
    GVariant* content = nullptr;
    g_variant_get(answer.get(), "(v)", &content);
    Variant value(content, g_variant_unref);
    if (!g_variant_is_of_type(content, G_VARIANT_TYPE(type))) {
        throw UDisksError(fmt::format("its {} has an unknown form", name), "");
    }
    return value;
}

std::optional<std::string> UDisks::missingTool(const std::string& type) const {
    const Variant answer =
        call(manager, managerInterface, "CanFormat", g_variant_new("(s)", type.c_str()), "((bs))");
    gboolean available = FALSE;
    const gchar* tool = nullptr;
    g_variant_get(answer.get(), "((b&s))", &available, &tool);
    return available ? std::nullopt : std::optional<std::string>(tool);
}

std::string UDisks::blockObject(const URL& node, const std::string& device) const {
    GVariantBuilder wanted;
    g_variant_builder_init(&wanted, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&wanted, "{sv}", "path", g_variant_new_string(node.c_str()));
    const Variant answer = call(manager, managerInterface, "ResolveDevice",
                                g_variant_new("(a{sv}a{sv})", &wanted, nullptr), "(ao)");
    const Variant objects(g_variant_get_child_value(answer.get(), 0), g_variant_unref);
    for (gsize i = 0; i < g_variant_n_children(objects.get()); ++i) {
        const Variant child(g_variant_get_child_value(objects.get(), i), g_variant_unref);
        std::string object = text(child.get());
        const dev_t number =
            g_variant_get_uint64(property(object, blockInterface, "DeviceNumber", "t").get());
        if (fmt::format("{}:{}", major(number), minor(number)) == device) return object;
    }
    throw UDisksError("it does not know the device " + node.native(), "");
}

void UDisks::unmount(const std::string& object) const {
    call(object, fileSystemInterface, "Unmount", noOptions(), "()");
}

void UDisks::format(const std::string& object, const std::string& type,
                    const std::string& label) const {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "update-partition-type", g_variant_new_boolean(TRUE));
    if (!label.empty()) {
        g_variant_builder_add(&options, "{sv}", "label", g_variant_new_string(label.c_str()));
    }
    call(object, blockInterface, "Format", g_variant_new("(sa{sv})", type.c_str(), &options), "()");
}

URL UDisks::mount(const std::string& object) const {
    try {
        const Variant answer = call(object, fileSystemInterface, "Mount", noOptions(), "(s)");
        const gchar* place = nullptr;
        g_variant_get(answer.get(), "(&s)", &place);
        return place;
    } catch (const UDisksError& error) {
        if (!error.isAlreadyMounted()) throw;
        return firstMountPoint(object);
    }
}

URL UDisks::firstMountPoint(const std::string& object) const {
    const Variant places = property(object, fileSystemInterface, "MountPoints", "aay");
    if (g_variant_n_children(places.get()) == 0) {
        throw UDisksError("it is mounted, but not said where", "");
    }
    const Variant first(g_variant_get_child_value(places.get(), 0), g_variant_unref);
    return g_variant_get_bytestring(first.get());
}

std::string UDisks::fileSystemType(const std::string& object) const {
    return text(property(object, blockInterface, "IdType", "s").get());
}

std::string UDisks::fileSystemVersion(const std::string& object) const {
    return text(property(object, blockInterface, "IdVersion", "s").get());
}

std::string UDisks::uuid(const std::string& object) const {
    return text(property(object, blockInterface, "IdUUID", "s").get());
}

}  // namespace keldo_diskutil

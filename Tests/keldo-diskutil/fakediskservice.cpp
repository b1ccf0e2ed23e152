// A disk service that answers as it is told, for what the real one does only in bad luck: it holds
// UDisks2's name on the system bus, with one block device.
//
//     fakediskservice LOG NODE PLACE [MEMBER=ERROR]...
//
// A line is added to LOG for every call that is to change something. NODE is really unmounted, but
// never erased or mounted; PLACE is where it is said to be mounted. A method or property MEMBER
// fails with the D-Bus error ERROR, or, for the error "form", answers something of another type.
// For an ERROR that begins with "!" the rest is run as a shell script before the ordinary answer.

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include <gio/gio.h>
#include <sys/mount.h>
#include <sys/stat.h>

namespace {

struct Orders {
    std::string log;
    std::string node;
    std::string place;
    std::map<std::string, std::string> errors;
};

constexpr const char* blockDevice = "/org/freedesktop/UDisks2/block_devices/card";

std::string memberOf(GDBusMessage* call) {
    std::string member = g_dbus_message_get_member(call);
    if (member != "Get") return member;
    const gchar* interface = nullptr;
    const gchar* name = nullptr;
    g_variant_get(g_dbus_message_get_body(call), "(&s&s)", &interface, &name);
    return name;
}

GVariant* property(const std::string& name, const Orders& orders) {
    if (name == "DeviceNumber") {
        struct stat facts {};
        ::stat(orders.node.c_str(), &facts);
        return g_variant_new_uint64(facts.st_rdev);
    }
    if (name == "MountPoints") {
        const gchar* places[] = {orders.place.c_str(), nullptr};
        return g_variant_new_bytestring_array(places, -1);
    }
    return g_variant_new_string(name == "IdVersion" ? "FAT32" : "of no interest");
}

GVariant* answer(const std::string& member, const Orders& orders) {
    if (member == "CanFormat") return g_variant_new_parsed("((true, ''),)");
    if (member == "ResolveDevice") return g_variant_new_parsed("([%o],)", blockDevice);
    if (member == "Mount") return g_variant_new("(s)", orders.place.c_str());
    if (member == "Unmount") ::umount(orders.node.c_str());
    if (member == "Unmount" || member == "Format") return g_variant_new("()");
    return g_variant_new("(v)", property(member, orders));
}

void note(GDBusMessage* call, const std::string& member, const Orders& orders) {
    if (member != "Unmount" && member != "Format" && member != "Mount") return;
    std::ofstream log(orders.log, std::ios::app);
    log << member;
    if (member == "Format") {
        GVariant* body = g_dbus_message_get_body(call);
        GVariant* options = g_variant_get_child_value(body, 1);
        const gchar* label = nullptr;
        if (g_variant_lookup(options, "label", "&s", &label)) log << ' ' << label;
        g_variant_unref(options);
    }
    log << '\n';
}

GDBusMessage* replyTo(GDBusMessage* call, const Orders& orders) {
    const std::string member = memberOf(call);
    note(call, member, orders);
    auto error = orders.errors.find(member);
    if (error != orders.errors.end() && error->second.starts_with('!')) {
        if (std::system(error->second.c_str() + 1) != 0) std::abort();
        error = orders.errors.end();
    }
    if (error != orders.errors.end() && error->second != "form") {
        return g_dbus_message_new_method_error_literal(call, error->second.c_str(),
                                                       "as the test wants it");
    }
    GDBusMessage* reply = g_dbus_message_new_method_reply(call);
    g_dbus_message_set_body(
        reply, error == orders.errors.end() ? answer(member, orders) : g_variant_new("(b)", TRUE));
    return reply;
}

GDBusMessage* serve(GDBusConnection* bus, GDBusMessage* message, gboolean incoming, gpointer data) {
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return message;
    }
    GDBusMessage* reply = replyTo(message, *static_cast<Orders*>(data));
    g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
    g_object_unref(message);
    return nullptr;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 4) return EXIT_FAILURE;
    Orders orders{arguments[1], arguments[2], arguments[3], {}};
    for (int i = 4; i < count; ++i) {
        const std::string order = arguments[i];
        orders.errors[order.substr(0, order.find('='))] = order.substr(order.find('=') + 1);
    }
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    if (!bus) return EXIT_FAILURE;
    g_dbus_connection_add_filter(bus, serve, &orders, nullptr);
    g_bus_own_name_on_connection(bus, "org.freedesktop.UDisks2", G_BUS_NAME_OWNER_FLAGS_NONE,
                                 nullptr, nullptr, nullptr, nullptr);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}

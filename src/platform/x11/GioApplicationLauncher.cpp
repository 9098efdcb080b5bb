#include "platform/x11/GioApplicationLauncher.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

namespace orvane {

void GioApplicationLauncher::openApplication(const std::string& applicationPath,
                                             ApplicationLaunchCompletion completion) {
    std::optional<std::string> failure;
    if (GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(applicationPath.c_str())) {
        GAppLaunchContext* context = g_app_launch_context_new();
        GError* error = nullptr;
        if (!g_app_info_launch(G_APP_INFO(info), nullptr, context, &error)) {
            failure = "could not start " + applicationPath + ": " +
                      (error != nullptr ? error->message : "no reason given");
        }
        g_clear_error(&error);
        g_object_unref(context);
        g_object_unref(info);
    } else {
        failure = "could not start " + applicationPath + ": its desktop entry does not read";
    }
    runLoop_->post([completion = std::move(completion), failure] { completion(failure); });
}

}  // namespace orvane

#include "platform/x11/X11ScreenCapture.h"

#include <xcb/composite.h>
#include <xcb/damage.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::thumbnailcapture);
}

// The largest side asked of the server: far above any card, far below what would stall it.
constexpr int largestSide = 4096;

xcb_render_fixed_t fixed(double value) {
    return static_cast<xcb_render_fixed_t>(std::lround(value * 65536.0));
}

bool isArgb32(const xcb_render_pictforminfo_t& format) {
    const auto& direct = format.direct;
    return format.type == XCB_RENDER_PICT_TYPE_DIRECT && format.depth == 32 &&
           direct.alpha_shift == 24 && direct.alpha_mask == 0xff && direct.red_shift == 16 &&
           direct.red_mask == 0xff && direct.green_shift == 8 && direct.green_mask == 0xff &&
           direct.blue_shift == 0 && direct.blue_mask == 0xff;
}

}  // namespace

X11ScreenCapture::X11ScreenCapture(X11Connection& connection, X11WindowModel& model,
                                   X11Screens& screens, std::shared_ptr<RunLoopPort> runLoop)
    : connection_(connection), model_(model), screens_(screens), runLoop_(std::move(runLoop)) {
    auto* c = connection_.connection();
    const auto* composite = xcb_get_extension_data(c, &xcb_composite_id);
    const auto* render = xcb_get_extension_data(c, &xcb_render_id);
    if (composite == nullptr || composite->present == 0 || render == nullptr ||
        render->present == 0) {
        log().info("window previews are off: the X server has no Composite or Render extension");
        return;
    }
    auto compositeCookie = xcb_composite_query_version(c, 0, 4);
    auto renderCookie = xcb_render_query_version(c, 0, 11);
    auto formatsCookie = xcb_render_query_pict_formats(c);
    auto* compositeVersion = xcb_composite_query_version_reply(c, compositeCookie, nullptr);
    std::free(xcb_render_query_version_reply(c, renderCookie, nullptr));
    auto* formats = xcb_render_query_pict_formats_reply(c, formatsCookie, nullptr);
    // Naming a window's pixmap came with version 0.2.
    const bool named = compositeVersion != nullptr && (compositeVersion->major_version > 0 ||
                                                       compositeVersion->minor_version >= 2);
    std::free(compositeVersion);
    if (formats != nullptr) {
        for (auto each = xcb_render_query_pict_formats_formats_iterator(formats); each.rem > 0;
             xcb_render_pictforminfo_next(&each)) {
            if (isArgb32(*each.data)) {
                argbFormat_ = each.data->id;
            }
        }
        for (auto screen = xcb_render_query_pict_formats_screens_iterator(formats); screen.rem > 0;
             xcb_render_pictscreen_next(&screen)) {
            for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
                 xcb_render_pictdepth_next(&depth)) {
                for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data);
                     visual.rem > 0; xcb_render_pictvisual_next(&visual)) {
                    visualFormats_[visual.data->visual] = visual.data->format;
                }
            }
        }
        std::free(formats);
    }
    available_ = named && argbFormat_ != 0;
    if (!available_) {
        log().info("window previews are off: the Composite extension cannot name window pixmaps");
        return;
    }
    const auto* damage = xcb_get_extension_data(c, &xcb_damage_id);
    if (damage != nullptr && damage->present != 0) {
        std::free(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
        damageEvent_ = damage->first_event + XCB_DAMAGE_NOTIFY;
        connection_.addListener([this](const xcb_generic_event_t& event) { handleEvent(event); });
    }
    for (auto window : model_.frontToBack()) {
        redirect(window);
    }
    model_.addListener(
        [this](X11WindowModel::ChangeKind kind, const X11WindowModel::Window& window) {
            if (kind == X11WindowModel::ChangeKind::added) {
                redirect(window.window);
            } else if (kind == X11WindowModel::ChangeKind::removed) {
                if (const auto frame = frames_.find(window.window); frame != frames_.end()) {
                    damages_.erase(frame->second);
                    drawnOn_.erase(frame->second);
                    frames_.erase(frame);
                }
                thumbnails_.erase(window.window);
            }
        });
}

void X11ScreenCapture::getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                           ShareableContentCompletion completion) {
    model_.refreshGeometry();
    ShareableContent content;
    for (auto identifier : model_.frontToBack()) {
        const auto* window = model_.window(identifier);
        if (window == nullptr ||
            (excludingDesktopWindows && window->kind == X11WindowModel::Kind::desktop) ||
            (onScreenWindowsOnly && window->isHidden)) {
            continue;
        }
        content.windows.push_back({window->identifier, window->frame});
    }
    runLoop_->post([completion = std::move(completion), content] { completion(content); });
}

void X11ScreenCapture::captureImage(const ContentFilter& filter,
                                    const StreamConfiguration& configuration,
                                    ImageCompletion completion) {
    const auto window = filter.desktopIndependentWindow;
    const auto width =
        static_cast<int>(std::clamp<std::int64_t>(configuration.width, 0, largestSide));
    const auto height =
        static_cast<int>(std::clamp<std::int64_t>(configuration.height, 0, largestSide));
    runLoop_->post(
        [weak = weak_from_this(), window, width, height, completion = std::move(completion)] {
            auto self = weak.lock();
            completion(self ? self->capture(window, width, height) : std::nullopt);
        });
}

std::optional<double> X11ScreenCapture::mainScreenBackingScaleFactor() const {
    return screens_.scaleFactor();
}

const WindowThumbnail* X11ScreenCapture::thumbnail(std::uint64_t identifier) const {
    for (const auto& [window, thumbnail] : thumbnails_) {
        if (thumbnail.identifier == identifier) {
            return &thumbnail;
        }
    }
    return nullptr;
}

std::optional<ImageHandle> X11ScreenCapture::capture(WindowIdentifier identifier, int width,
                                                     int height) {
    // What the server has told already (drawing, a window gone) decides whether the last
    // capture still holds.
    connection_.dispatchPendingEvents();
    const auto* client = model_.windowOf(identifier);
    if (client == nullptr) {
        log().debug("no preview of window %{public}u: it is gone", identifier);
    }
    if (!available_ || width <= 0 || height <= 0 || client == nullptr) {
        return std::nullopt;
    }
    const auto window = client->window;
    if (client->isHidden) {
        // Minimized: nothing to capture now, but the window looked like its last capture.
        return lastCapture(*client);
    }
    const auto frame = frameOf(window);
    if (!frame) {
        log().debug("no preview of window 0x%{public}x: it is gone", window);
        return std::nullopt;
    }
    auto* c = connection_.connection();
    if (const auto damage = damages_.find(*frame); damage != damages_.end()) {
        const auto last = thumbnails_.find(window);
        if (last != thumbnails_.end() && !drawnOn_.contains(*frame) &&
            last->second.width == width && last->second.height == height) {
            return lastCapture(*client);
        }
        // Whatever is drawn from here on is newer than this capture.
        drawnOn_.erase(*frame);
        xcb_damage_subtract(c, damage->second, XCB_NONE, XCB_NONE);
    }
    const xcb_pixmap_t contents = xcb_generate_id(c);
    auto geometryCookie = xcb_get_geometry(c, *frame);
    auto attributesCookie = xcb_get_window_attributes(c, *frame);
    auto nameCookie = xcb_composite_name_window_pixmap_checked(c, *frame, contents);
    auto* geometry = xcb_get_geometry_reply(c, geometryCookie, nullptr);
    auto* attributes = xcb_get_window_attributes_reply(c, attributesCookie, nullptr);
    auto* nameError = xcb_request_check(c, nameCookie);
    const auto format = attributes ? formatOfVisual(attributes->visual) : std::nullopt;
    const bool isUnmapped =
        attributes != nullptr && attributes->map_state != XCB_MAP_STATE_VIEWABLE;
    const bool named = geometry != nullptr && attributes != nullptr && nameError == nullptr &&
                       !isUnmapped && format.has_value();
    const int sourceWidth = geometry ? geometry->width + 2 * geometry->border_width : 0;
    const int sourceHeight = geometry ? geometry->height + 2 * geometry->border_width : 0;
    std::free(geometry);
    std::free(attributes);
    std::free(nameError);
    if (!named) {
        if (nameError == nullptr) {
            xcb_free_pixmap(c, contents);
        }
        if (isUnmapped) {
            // On another desktop: shown as it was when last seen.
            return lastCapture(*client);
        }
        // The frame may have gone with its window, or another window manager framed it anew.
        frames_.erase(window);
        damages_.erase(*frame);
        log().debug("no preview of window 0x%{public}x: it is gone or not drawn", window);
        return std::nullopt;
    }

    // The server scales: only the card-sized result crosses the connection.
    const xcb_render_picture_t source = xcb_generate_id(c);
    xcb_render_create_picture(c, source, contents, *format, 0, nullptr);
    const xcb_render_transform_t scale{fixed(double(sourceWidth) / width),
                                       0,
                                       0,
                                       0,
                                       fixed(double(sourceHeight) / height),
                                       0,
                                       0,
                                       0,
                                       fixed(1)};
    xcb_render_set_picture_transform(c, source, scale);
    const char filter[] = "bilinear";
    xcb_render_set_picture_filter(c, source, sizeof filter - 1, filter, 0, nullptr);
    const xcb_pixmap_t scaled = xcb_generate_id(c);
    xcb_create_pixmap(c, 32, scaled, connection_.root(), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height));
    const xcb_render_picture_t target = xcb_generate_id(c);
    xcb_render_create_picture(c, target, scaled, argbFormat_, 0, nullptr);
    xcb_render_composite(c, XCB_RENDER_PICT_OP_SRC, source, XCB_NONE, target, 0, 0, 0, 0, 0, 0,
                         static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
    auto imageCookie =
        xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, scaled, 0, 0, static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), ~0u);
    xcb_render_free_picture(c, target);
    xcb_render_free_picture(c, source);
    xcb_free_pixmap(c, scaled);
    xcb_free_pixmap(c, contents);
    auto* image = xcb_get_image_reply(c, imageCookie, nullptr);
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    if (image == nullptr || image->depth != 32 ||
        static_cast<std::size_t>(xcb_get_image_data_length(image)) < count * 4) {
        std::free(image);
        log().debug("no preview of window 0x%{public}x: the server gave no image", window);
        return std::nullopt;
    }
    WindowThumbnail thumbnail{thumbnailIdentifierBit | ++lastIdentifier_, width, height,
                              std::vector<std::uint32_t>(count)};
    std::memcpy(thumbnail.pixels.data(), xcb_get_image_data(image), count * 4);
    std::free(image);
    thumbnails_.insert_or_assign(window, std::move(thumbnail));
    return lastCapture(*client);
}

std::optional<ImageHandle> X11ScreenCapture::lastCapture(
    const X11WindowModel::Window& client) const {
    const auto last = thumbnails_.find(client.window);
    if (last == thumbnails_.end()) {
        log().debug("no preview of window 0x%{public}x: it can't be captured now, and never was",
                    client.window);
        return std::nullopt;
    }
    return ImageHandle{last->second.identifier,
                       double(last->second.width),
                       double(last->second.height),
                       "preview of " + client.title,
                       0,
                       0};
}

std::optional<xcb_window_t> X11ScreenCapture::frameOf(xcb_window_t window) {
    if (auto found = frames_.find(window); found != frames_.end()) {
        return found->second;
    }
    auto* c = connection_.connection();
    xcb_window_t current = window;
    // Window managers nest a client a level or two deep; anything deeper is not a frame.
    for (int level = 0; level < 8; ++level) {
        auto* tree = xcb_query_tree_reply(c, xcb_query_tree(c, current), nullptr);
        if (tree == nullptr) {
            return std::nullopt;
        }
        const auto parent = tree->parent;
        const bool atTop = parent == tree->root || parent == XCB_NONE;
        std::free(tree);
        if (atTop) {
            frames_[window] = current;
            return current;
        }
        current = parent;
    }
    return std::nullopt;
}

void X11ScreenCapture::redirect(xcb_window_t window) {
    // Automatic: the server keeps drawing the screen itself, and the frame keeps its contents even
    // while covered. A compositing manager's own redirection stays as it is.
    if (const auto frame = frameOf(window)) {
        auto* c = connection_.connection();
        xcb_composite_redirect_window(c, *frame, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        if (damageEvent_ != 0 && !damages_.contains(*frame)) {
            // Told once when the frame is first drawn on after each capture; gone with the frame.
            const auto damage = xcb_generate_id(c);
            xcb_damage_create(c, damage, *frame, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
            damages_[*frame] = damage;
        }
    }
}

void X11ScreenCapture::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) == damageEvent_) {
        drawnOn_.insert(reinterpret_cast<const xcb_damage_notify_event_t&>(event).drawable);
    }
}

std::optional<xcb_render_pictformat_t> X11ScreenCapture::formatOfVisual(
    xcb_visualid_t visual) const {
    if (auto found = visualFormats_.find(visual); found != visualFormats_.end()) {
        return found->second;
    }
    return std::nullopt;
}

}  // namespace orvane

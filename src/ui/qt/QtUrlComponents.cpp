#include "ui/qt/QtUrlComponents.h"

#include <QUrl>
#include <QUrlQuery>

namespace orvane {

namespace {

QString qstring(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Everything but unreserved characters encoded, so that "&", "=" and "+" in a value stay in it.
QString encoded(const std::string& text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(qstring(text)));
}

}  // namespace

std::optional<std::string> QtUrlComponents::url(const std::string& scheme, const std::string& path,
                                                const std::vector<UrlQueryItem>& queryItems) const {
    QUrl url;
    url.setScheme(qstring(scheme));
    url.setPath(qstring(path));
    if (!queryItems.empty()) {
        QString query;
        for (const auto& item : queryItems) {
            query += query.isEmpty() ? QString() : QStringLiteral("&");
            query += encoded(item.name);
            if (item.value) {
                query += QStringLiteral("=") + encoded(*item.value);
            }
        }
        url.setQuery(query, QUrl::StrictMode);
    }
    if (!url.isValid() || url.scheme().isEmpty()) {
        return std::nullopt;
    }
    return url.toString(QUrl::FullyEncoded).toStdString();
}

}  // namespace orvane

#include "keldo-app/Components/SymbolProvider.h"

#include <QPainter>
#include <QSvgRenderer>

namespace keldo_app {

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const QString name = id.section('/', 0, 0);
    QSvgRenderer icon(":/symbols/" + name + ".svg");
    if (!icon.isValid()) return {};
    QImage image(requestedSize.isValid() ? requestedSize : icon.defaultSize(),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor("#" + id.section('/', 1, 1)));
    painter.end();
    *size = image.size();
    return image;
}

}  // namespace keldo_app

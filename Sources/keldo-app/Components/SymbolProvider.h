#pragma once

#include <QQuickImageProvider>

namespace keldo_app {

/// Draws a symbol in one colour, crisp at the size asked for: `image://symbol/NAME/RRGGBB`. The
/// names and the icons behind them stand in `symbols.txt`. Safe from the image loader's thread.
class SymbolProvider : public QQuickImageProvider {
public:
    SymbolProvider() : QQuickImageProvider(Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace keldo_app

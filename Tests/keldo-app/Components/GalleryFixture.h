#pragma once

#include "Window/WindowFixture.h"

/// A test of components, as the gallery shows them.
class GalleryFixture : public WindowSupport::WindowFixture {
protected:
    /// Opens the gallery at a section: "Controls", "Rows", "Texts", "States" or "Bare".
    void openGallery(const QString& section);

    QVariant property(const QString& item, const char* name) const {
        return driver_->at(item).property(name);
    }
    /// What the Controls section has heard last.
    QString last() const { return driver_->text("last"); }
};

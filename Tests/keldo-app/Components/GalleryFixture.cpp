#include "GalleryFixture.h"

#include "Gallery/Gallery.h"

void GalleryFixture::openGallery(const QString& section) {
    driver_ = std::make_unique<WindowSupport::WindowDriver>(Gallery::load);
    driver_->press("section." + section);
}

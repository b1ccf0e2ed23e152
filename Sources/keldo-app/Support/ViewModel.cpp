#include "keldo-app/Support/ViewModel.h"

#include "keldo-app/Support/Format.h"

namespace keldo_app {

QString OptionalURL::path() const {
    return has_value() ? Format::path(**this) : QString();
}

QString OptionalURL::name() const {
    return has_value() ? Format::name(**this) : QString();
}

PlaceRow PlaceRow::of(const ReelCore::URL& url) {
    return {Format::name(url), Format::path(url)};
}

}  // namespace keldo_app

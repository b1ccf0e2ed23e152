#include "keldo-app/Support/ViewModel.h"

#include "keldo-app/Support/Format.h"

namespace keldo_app {

QString OptionalURL::path() const {
    return has_value() ? Format::path(**this) : QString();
}

QString OptionalURL::name() const {
    return has_value() ? Format::name(**this) : QString();
}

}  // namespace keldo_app

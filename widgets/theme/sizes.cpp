#include "widgets/theme/sizes.h"

#include "app/context/k.h"

namespace theme {

int Length::operator()() const
{
    return K::scaledPx(designPixels_);
}

QSize calendarSize()
{
    return {K::scaledPx(290), K::scaledPx(230)};
}

} // namespace theme

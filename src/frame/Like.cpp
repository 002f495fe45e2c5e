#include "Like.h"

#include "LikePattern_p.h"

namespace Kelocontrols {

bool Like(const QString &text, const QString &pattern)
{
    return LikePattern(pattern).matches(text);
}

} // namespace Kelocontrols

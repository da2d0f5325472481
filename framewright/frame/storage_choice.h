// The one place that chooses the storage of a new layer.
#pragma once

#include <type_traits>

#include "framewright/frame/non_spool.h"
#include "framewright/spool/imager_spool.h"

namespace frame {

/// Calls `make` with the type of the spooler for a new layer, as in
///
///     return frame::WithSpooler(spooled, [&]<class Spool>(std::type_identity<Spool>) {
///         return NewLayer<SmImagerLayer<Pixel, Spool>>(...);
///     });
template <class Make>
auto WithSpooler(bool spooled, Make const& make) {
    return spooled ? make(std::type_identity<ScImagerSpool>{}) : make(std::type_identity<ScImagerNonSpool>{});
}

}  // namespace frame

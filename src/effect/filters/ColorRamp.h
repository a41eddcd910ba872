// Colour ramps: stops turned into tables, and cores that keep stops.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "effect/GxECore.h"
#include "effect/GxProperty.h"

namespace GxFontEffect {

// How a ramp runs along its stops.
enum GxRampCurve : int {
    GXE_CURVE_LINEAR = 0,
    GXE_CURVE_ROOT = 1,    // u = square root of t
    GXE_CURVE_SQUARE = 2,  // u = t^2
};

// Entries of a ramp's table, 0 to 256.
inline constexpr int kRampSize = 257;

// Fills the 257 entries of `table` with straight colours: entry 0 is the first stop's, entry 256
// the last one's, entry i between them the ramp at u(i / 256). `firstPosition` stands in for the
// first stop's position. One stop fills the table; without stops it is left alone.
//
// The ramp moves on by at most one stop per entry, deliberately: a segment narrower than 1/256 is
// passed an entry late, not skipped. It never moves past the last stop, where the last colour
// holds. Equal neighbouring positions are a hard edge. Between two stops, in single precision,
//     f = (int)((u - p0) / (p1 - p0) x 256),
// the first colour for f below 1, the second from 256 on, else (c1 f + c0 (256 - f)) >> 8 per
// channel.
void fillColorRamp(uint32_t* table, const GxGradient* stops, int stopCount, float firstPosition,
                   int curve);

// A core whose record has stops, of which it keeps a copy.
template <typename Property>
class GxStopsCore : public GxPropertyCore<Property> {
public:
    // The record is built anew, so its constructor's conversions apply.
    void setProperty(const GxProperty* source) override {
        const auto* record = dynamic_cast<const Property*>(source);
        if (!record) return;
        const int count = record->stops && record->stopCount > 0 ? record->stopCount : 0;
        std::unique_ptr<GxGradient[]> copies;
        if (count > 0) {
            copies.reset(new (std::nothrow) GxGradient[static_cast<size_t>(count)]);
            if (!copies) {
                this->keep(nullptr);
                return;
            }
            for (int i = 0; i < count; ++i) copies[i] = record->stops[i];
        }
        if (this->keep(std::unique_ptr<Property>(rebuilt(*record, copies.get())))) {
            ownStops = std::move(copies);
        }
    }

protected:
    explicit GxStopsCore(int effectStyle) : GxPropertyCore<Property>(effectStyle) {}

private:
    static Property* rebuilt(const Property& record, const GxGradient* stops) {
        if constexpr (std::is_base_of_v<GxOuterGlowProperty, Property>) {
            return new (std::nothrow)
                Property(record.size, record.color, record.opacity, record.stopCount, stops);
        } else {
            return new (std::nothrow)
                Property(record.angle, record.scale, record.opacity, record.stopCount, stops);
        }
    }

    std::unique_ptr<GxGradient[]> ownStops;  // what the record's stops point to
};

}  // namespace GxFontEffect

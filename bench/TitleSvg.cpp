#include "TitleSvg.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace gxbench {

namespace {

using Kind = TitleLayer::Kind;

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.6g", value);
    return text;
}

std::string attribute(const std::string& name, double value) {
    return " " + name + "=\"" + number(value) + "\"";
}

// `color` and `opacity` are the attributes' names.
std::string paintAttributes(const char* color, const char* opacity, const TitlePaint& paint) {
    char text[8];
    std::snprintf(text, sizeof(text), "#%02x%02x%02x",
                  static_cast<unsigned>(std::lround(255 * paint.red)),
                  static_cast<unsigned>(std::lround(255 * paint.green)),
                  static_cast<unsigned>(std::lround(255 * paint.blue)));
    return std::string(" ") + color + "=\"" + text + "\"" + attribute(opacity, paint.alpha);
}

std::string fillOf(const TitlePaint& paint) {
    return paintAttributes("fill", "fill-opacity", paint);
}

std::string outlineOf(const TitlePaint& paint, double width) {
    return paintAttributes("stroke", "stroke-opacity", paint) +
           attribute("stroke-width", 2 * width) + " stroke-linejoin=\"round\"";
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) out += c == '&' ? "&amp;" : c == '<' ? "&lt;" : std::string(1, c);
    return out;
}

// The lines once, without a fill of their own.
std::string textOf(const TitlePicture& picture) {
    std::string out = "<g id=\"text\" font-family=\"" + picture.family + "\"" +
                      attribute("font-size", picture.size) +
                      attribute("font-weight", picture.weight) + ">";
    for (const TitleLine& line : picture.lines) {
        out += "<text" + attribute("x", line.x) + attribute("y", line.baseline) + ">" +
               escaped(line.text) + "</text>";
    }
    return out + "</g>";
}

std::string drawn(const std::string& attributes) {
    return "<use xlink:href=\"#text\"" + attributes + "/>";
}

std::string stopsOf(const TitleLayer& layer) {
    std::string out;
    for (const TitleLayer::Stop& stop : layer.stops) {
        out += "<stop" + attribute("offset", stop.position) +
               paintAttributes("stop-color", "stop-opacity", stop.paint) + "/>";
    }
    return out;
}

std::string rampOf(const TitleLayer& layer, const std::string& id) {
    const std::string head = " id=\"" + id + "\" gradientUnits=\"userSpaceOnUse\"";
    if (layer.kind == Kind::kLinear) {
        return "<linearGradient" + head + attribute("x1", layer.from.x) +
               attribute("y1", layer.from.y) + attribute("x2", layer.to.x) +
               attribute("y2", layer.to.y) + ">" + stopsOf(layer) + "</linearGradient>";
    }
    return "<radialGradient" + head + attribute("cx", layer.from.x) +
           attribute("cy", layer.from.y) + attribute("r", layer.width) + ">" + stopsOf(layer) +
           "</radialGradient>";
}

std::string squaresOf(const std::string& id) {
    return "<pattern id=\"" + id +
           "\" width=\"16\" height=\"16\" patternUnits=\"userSpaceOnUse\">"
           "<path d=\"M0 0h16v16h-16z\" fill=\"#fff\"/>"
           "<path d=\"M0 0h8v8h-8zM8 8h8v8h-8z\" fill=\"#808080\"/></pattern>";
}

// A filter over the whole picture.
std::string filterOf(const TitlePicture& picture, const std::string& id, const std::string& steps) {
    return "<filter id=\"" + id +
           "\" filterUnits=\"userSpaceOnUse\" color-interpolation-filters=\"sRGB\" x=\"0\" "
           "y=\"0\"" +
           attribute("width", picture.width) + attribute("height", picture.height) + ">" + steps +
           "</filter>";
}

std::string blurOf(const TitleLayer& layer) {
    return "<feGaussianBlur" + attribute("stdDeviation", layer.deviation) + "/>";
}

// What surrounds the text, blurred and moved, in the layer's colour within the text.
std::string insideOf(const TitleLayer& layer) {
    return "<feComponentTransfer in=\"SourceAlpha\">"
           "<feFuncA type=\"table\" tableValues=\"1 0\"/></feComponentTransfer>" +
           blurOf(layer) + "<feOffset" + attribute("dx", layer.shift.x) +
           attribute("dy", layer.shift.y) +
           "/><feComposite operator=\"in\" in2=\"SourceAlpha\" result=\"edge\"/><feFlood" +
           paintAttributes("flood-color", "flood-opacity", layer.paint) +
           "/><feComposite operator=\"in\" in2=\"edge\"/>";
}

std::string filtered(const std::string& id, const std::string& content,
                     const std::string& attributes = "") {
    return "<g filter=\"url(#" + id + ")\"" + attributes + ">" + content + "</g>";
}

struct Parts {
    std::string definitions;
    std::string body;
};

void addLayer(const TitlePicture& picture, const TitleLayer& layer, const std::string& id,
              Parts& parts) {
    const std::string reference = " fill=\"url(#" + id + ")\"";
    switch (layer.kind) {
        case Kind::kShadow:
            parts.definitions += filterOf(picture, id, blurOf(layer));
            parts.body += "<g transform=\"translate(" + number(layer.shift.x) + "," +
                          number(layer.shift.y) + ")\">" +
                          filtered(id, drawn(fillOf(layer.paint))) + "</g>";
            break;
        case Kind::kGlow:
            parts.definitions += filterOf(picture, id, blurOf(layer));
            parts.body +=
                filtered(id, drawn(fillOf(layer.paint) + outlineOf(layer.paint, layer.width)));
            break;
        case Kind::kStroke:
            parts.body += drawn(" fill=\"none\"" + outlineOf(layer.paint, layer.width));
            break;
        case Kind::kLinear:
        case Kind::kRadial:
            parts.definitions += rampOf(layer, id);
            parts.body += drawn(reference);
            break;
        case Kind::kPattern:
            parts.definitions += squaresOf(id);
            parts.body += drawn(reference + attribute("fill-opacity", layer.opacity));
            break;
        case Kind::kInnerGlow:
        case Kind::kInnerShadow:
            parts.definitions += filterOf(picture, id, insideOf(layer));
            parts.body += filtered(id, drawn(" fill=\"#000\""));
            break;
    }
}

}  // namespace

std::string svgOf(const TitlePicture& picture) {
    Parts parts;
    bool filled = false;
    const auto fill = [&] {
        if (!filled) parts.body += drawn(fillOf(picture.paint));
        filled = true;
    };
    for (size_t i = 0; i < picture.layers.size(); ++i) {
        if (isOverFill(picture.layers[i].kind)) fill();
        addLayer(picture, picture.layers[i], "layer" + std::to_string(i), parts);
    }
    fill();
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" "
           "xmlns:xlink=\"http://www.w3.org/1999/xlink\"" +
           attribute("width", picture.width) + attribute("height", picture.height) + "><defs>" +
           textOf(picture) + parts.definitions + "</defs>" + parts.body + "</svg>";
}

}  // namespace gxbench

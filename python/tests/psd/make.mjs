// Writes the layered pictures that the tests read, with the npm package ag-psd:
//   npm install --prefix build/psd ag-psd@31.0.2 && NODE_PATH=build/psd/node_modules node python/tests/psd/make.mjs
// Beside each layer's effects there is a .json of them, for what must come back.
import { mkdirSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const { writePsdBuffer } = createRequire(join(process.env.NODE_PATH ?? "node_modules", "x.js"))("ag-psd");
const here = dirname(fileURLToPath(import.meta.url));

const pixels = (value) => ({ units: "Pixels", value });
const rgb = (r, g, b) => ({ r, g, b });
const base = { present: true, showInDialog: true, enabled: true };
const ramp = (name, ...colors) => ({
  name,
  type: "solid",
  smoothness: 1,
  colorStops: colors.map((color, i) => ({ color, location: i / (colors.length - 1), midpoint: 0.5 })),
  opacityStops: [0, 1].map((location) => ({ opacity: 1, location, midpoint: 0.5 })),
});
const shadow = {
  ...base, size: pixels(8), angle: 120, distance: pixels(6), choke: pixels(25), color: rgb(58, 10, 0),
  blendMode: "multiply", opacity: 0.5, useGlobalLight: false, antialiased: false, noise: 0, layerConceals: true,
  contour: { name: "Linear", curve: [{ x: 0, y: 0 }, { x: 255, y: 255 }] },
};
const { layerConceals, ...innerShadow } = { ...shadow, distance: pixels(2) };
const glow = {
  ...base, size: pixels(12), choke: pixels(0), color: rgb(255, 255, 190), blendMode: "screen", opacity: 0.75,
  source: "edge", technique: "softer", antialiased: false, noise: 0, range: 0.5, jitter: 0, contour: shadow.contour,
};
const overlay = (gradient) => ({
  ...base, blendMode: "normal", opacity: 1, align: true, angle: 90, dither: false, reverse: false, type: "linear",
  offset: { x: 0, y: 0 }, scale: 1, gradient,
});
const stroke = (fields) => ({
  ...base, size: pixels(3), position: "outside", fillType: "color", blendMode: "normal", opacity: 1, overprint: false,
  color: rgb(74, 46, 0), ...fields,
});

const gold = {
  dropShadow: [shadow],
  outerGlow: glow,
  gradientOverlay: [overlay(ramp("Gold", rgb(138, 90, 0), rgb(255, 215, 94), rgb(255, 247, 208)))],
  stroke: [stroke()],
  bevel: {
    ...base, size: pixels(7), angle: 120, altitude: 30, strength: 1, style: "inner bevel", technique: "smooth",
    direction: "up", soften: pixels(0), highlightBlendMode: "screen", shadowBlendMode: "multiply",
    highlightColor: rgb(255, 255, 255), shadowColor: rgb(0, 0, 0), highlightOpacity: 0.75, shadowOpacity: 0.6,
    useGlobalLight: false, useTexture: false, useShape: false, antialiasGloss: false, contour: shadow.contour,
  },
};
// Several of a kind, and what a style has not.
const many = {
  dropShadow: [{ ...shadow, useGlobalLight: true, noise: 0.25 }, { ...shadow, size: pixels(20), enabled: false }],
  innerShadow: [innerShadow],
  innerGlow: { ...glow, source: "center", technique: "precise" },
  solidFill: [{ ...base, color: rgb(255, 204, 0), blendMode: "overlay", opacity: 0.5 }],
  stroke: [
    stroke({ position: "center", fillType: "gradient", gradient: {
      ...ramp("Ends", rgb(255, 0, 0), rgb(0, 0, 255)), style: "reflected", scale: 1, angle: 45, dither: true, align: true,
      offset: { x: 0, y: 0 }, reverse: true } }),
    stroke({ position: "inside", size: pixels(1) }),
  ],
  satin: {
    ...base, size: pixels(14), distance: pixels(11), angle: 19, blendMode: "multiply", color: rgb(0, 0, 0),
    antialiased: true, opacity: 0.5, invert: true, contour: shadow.contour,
  },
  bevel: { ...gold.bevel, style: "pillow emboss", technique: "chisel hard", direction: "down", useTexture: true },
};

const text = (words, style, more = {}) => ({
  text: words, transform: [1, 0, 0, 1, 10, 60], style: {
    font: { name: "DejaVuSans-Bold" }, fontSize: 48, fillColor: rgb(255, 215, 94), ...style }, ...more,
});

function write(name, children, resources) {
  const buffer = writePsdBuffer({ width: 64, height: 48, children, imageResources: resources }, { generateThumbnail: false });
  writeFileSync(join(here, `${name}.psd`), buffer);
}

mkdirSync(here, { recursive: true });
write("title", [
  { name: "Gold", text: text("Golden\nhour", { tracking: 50 }, { paragraphStyle: { justification: "center" } }), effects: gold },
  { name: "Not a text", effects: { solidFill: [{ ...base, color: rgb(1, 2, 3), blendMode: "normal", opacity: 1 }] } },
  { name: "Plain", opacity: 0.5, text: text("Plain", { font: { name: "Verdana" }, fauxItalic: true, horizontalScale: 1.5 }) },
], { globalAngle: 30, globalAltitude: 40 });
write("mixed", [
  { name: "Group", opened: true, children: [
    { name: "Many/effects", effects: many, fillOpacity: 0.25, text: text("Twice as large", { underline: true, fauxBold: true }, {
      transform: [2, 0, 0, 2, 10, 60], styleRuns: [
        { length: 5, style: { fontSize: 24 } },
        { length: 9, style: { fontSize: 48, fillColor: rgb(255, 0, 0) } } ] }) },
    { name: "Many/effects", effects: { ...many, disabled: true }, text: text("Turned", {}, { transform: [0, 1, -1, 0, 10, 60] }) },
  ] },
], { globalAngle: 60, globalAltitude: 45 });
writeFileSync(join(here, "effects.json"), `${JSON.stringify({ gold, many }, null, 1)}\n`);

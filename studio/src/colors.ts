// Colours as styles have them: "#RRGGBB", or "#AARRGGBB".
const COLOR = /^#([0-9a-f]{6}|[0-9a-f]{8})$/i;
const BLACK = '#000000';

export function isColor(text: string): boolean {
  return COLOR.test(text);
}

// As a style sheet has it, "#RRGGBBAA".
export function cssColor(color: string): string {
  return color.length === 9 ? `#${color.slice(3)}${color.slice(1, 3)}` : color;
}

// Black for what is none.
export function opaqueOf(color: string): string {
  return isColor(color) ? `#${color.slice(-6)}` : BLACK;
}

export function alphaOf(color: string): number {
  return color.length === 9 ? Number.parseInt(color.slice(1, 3), 16) : 255;
}

const digits = (value: number) => Math.round(value).toString(16).padStart(2, '0');

export function withAlpha(opaque: string, alpha: number): string {
  const strength = Math.round(alpha) === 255 ? '' : digits(alpha);
  return `#${strength}${opaque.slice(1)}`.toUpperCase();
}

// Red, green, blue and alpha, 0-255.
export function channelsOf(color: string): number[] {
  const parts = [1, 3, 5].map((place) => Number.parseInt(opaqueOf(color).slice(place, place + 2), 16));
  return [...parts, alphaOf(color)];
}

export function colorOf([red, green, blue, alpha]: number[]): string {
  return withAlpha(`#${digits(red)}${digits(green)}${digits(blue)}`, alpha);
}

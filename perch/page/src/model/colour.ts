// Colours as text, "#rrggbb" or "red,green,blue,alpha", and as numbers from 0 to 255.

export function coloursOf(text: string): readonly number[] | null {
  const hex = /^#([0-9a-f]{6})$/i.exec(text)?.[1];
  if (hex) return [0, 2, 4].map((at) => parseInt(hex.slice(at, at + 2), 16));
  const parts = text.split(',').map(Number);
  const isColour = (parts.length === 3 || parts.length === 4) && parts.every((part) => part >= 0 && part <= 255);
  return isColour ? parts : null;
}

export function colourText(numbers: readonly number[]): string {
  const codes = numbers.map((number) => Math.round(number));
  if (codes.length === 4 && codes[3] !== 255) return codes.join(',');
  return `#${codes.slice(0, 3).map((code) => code.toString(16).padStart(2, '0')).join('')}`;
}

// Numbers as the controls show and take them.

export function shown(number: number, precision: number): string {
  return (Math.abs(number) < 0.5 * 10 ** -precision ? 0 : number).toFixed(precision);
}

export function clamped(number: number, least: number, most: number): number {
  return Math.min(Math.max(number, least), most);
}

// To as many digits as the control shows.
export function rounded(number: number, precision: number): number {
  return Number(number.toFixed(precision));
}

// A number, or a short sum such as "62+3" or "10/4"; null for anything else.
export function parsed(text: string): number | null {
  const sum = /^\s*(-?[\d.,]+)\s*(?:([-+*/])\s*(-?[\d.,]+)\s*)?%?\s*$/.exec(text);
  if (!sum) return null;
  const numberOf = (part: string) => Number(part.replace(',', '.'));
  const a = numberOf(sum[1] as string);
  const b = sum[3] === undefined ? 0 : numberOf(sum[3]);
  const result = { '+': a + b, '-': a - b, '*': a * b, '/': a / b }[sum[2] ?? '+'] ?? a;
  return Number.isFinite(result) ? result : null;
}

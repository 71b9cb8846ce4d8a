// The pictures of the stand-in: a sample, blurred with distance from the focal point. Blurs coarsely;
// what matters is that every picture depends on the values that were sent.
import { readFileSync } from 'node:fs';
import { pageFolder } from '../folder';
import { readPng } from './png';
import type { Samples } from './png';

// The still has 1280 x 720 pixels, a frame of the shot 640 x 360.
export type SceneName = 'still' | 'shot';

export interface Look {
  readonly point: number; // 0 to 1
  readonly range: number;
  readonly radius: number; // pixels of the full picture
  readonly stamp: number | null; // 32 bits that are drawn into the corner
}

const sample = (name: string) => readPng(readFileSync(new URL(`../../samples/${name}.png`, pageFolder)));

// Stamps are 32 squares of this many pixels in the first rows, black and white.
export const stampSize = 8;

export class Scene {
  private readonly beauty: Samples;
  private readonly depth: Samples;
  private readonly tables: readonly Float64Array[];
  readonly width: number;
  readonly height: number;

  constructor(name: SceneName) {
    this.beauty = sample(name === 'still' ? 'still/beauty' : 'shot/beauty.0001');
    this.depth = sample(name === 'still' ? 'still/depth' : 'shot/depth.0001');
    this.width = this.beauty.width;
    this.height = this.beauty.height;
    this.tables = [0, 1, 2, 3].map((channel) => this.table(channel));
  }

  depthAt(x: number, y: number): number {
    return this.depth.codes[y * this.width + x] as number;
  }

  sourceAt(x: number, y: number): number[] {
    return [...this.beauty.codes.subarray((y * this.width + x) * 4, (y * this.width + x) * 4 + 4)];
  }

  histogram(): number[] {
    const bins = new Array<number>(256).fill(0);
    for (const code of this.depth.codes) bins[code >> 8] = (bins[code >> 8] ?? 0) + 1;
    return bins;
  }

  picture(kind: string, look: Look, width: number, height: number): Uint8ClampedArray {
    const codes = new Uint8ClampedArray(width * height * 4);
    for (let y = 0; y < height; y += 1)
      for (let x = 0; x < width; x += 1) {
        const fullX = Math.floor(((x + 0.5) * this.width) / width);
        const fullY = Math.floor(((y + 0.5) * this.height) / height);
        this.pixel(kind, look, fullX, fullY, codes, (y * width + x) * 4);
      }
    if (look.stamp !== null && kind === 'result') drawStamp(codes, width, look.stamp);
    return codes;
  }

  private pixel(kind: string, look: Look, x: number, y: number, codes: Uint8ClampedArray, at: number): void {
    const value = this.depthAt(x, y) / 65535;
    const distance = Math.max(Math.abs(look.point - value) - look.range, 0);
    if (kind === 'layer') codes.set([value * 255, value * 255, value * 255, 255], at);
    else if (kind === 'focus' && distance > 0) codes.set([distance * 255, distance * 255, distance * 255, 255], at);
    else if (kind === 'result' && distance > 0) this.blurred(x, y, Math.round(distance * look.radius), codes, at);
    else codes.set(this.sourceAt(x, y), at);
  }

  private blurred(x: number, y: number, radius: number, codes: Uint8ClampedArray, at: number): void {
    const [left, right] = [Math.max(x - radius, 0), Math.min(x + radius + 1, this.width)];
    const [top, bottom] = [Math.max(y - radius, 0), Math.min(y + radius + 1, this.height)];
    const row = this.width + 1;
    const sum = (table: Float64Array) =>
      (table[bottom * row + right] as number) - (table[top * row + right] as number) -
      (table[bottom * row + left] as number) + (table[top * row + left] as number);
    const alpha = sum(this.tables[3] as Float64Array);
    if (alpha <= 0) return;
    for (let channel = 0; channel < 3; channel += 1)
      codes[at + channel] = sum(this.tables[channel] as Float64Array) / alpha;
    codes[at + 3] = alpha / ((right - left) * (bottom - top));
  }

  // Sums of all that lies above and left; colours times their alpha.
  private table(channel: number): Float64Array {
    const row = this.width + 1;
    const table = new Float64Array(row * (this.height + 1));
    for (let y = 0; y < this.height; y += 1)
      for (let x = 0; x < this.width; x += 1) {
        const at = (y * this.width + x) * 4;
        const alpha = this.beauty.codes[at + 3] as number;
        const code = channel === 3 ? alpha : (this.beauty.codes[at + channel] as number) * alpha;
        table[(y + 1) * row + x + 1] =
          code + (table[y * row + x + 1] as number) + (table[(y + 1) * row + x] as number) - (table[y * row + x] as number);
      }
    return table;
  }
}

function drawStamp(codes: Uint8ClampedArray, width: number, stamp: number): void {
  for (let y = 0; y < stampSize; y += 1)
    for (let x = 0; x < 32 * stampSize; x += 1) {
      const light = ((stamp >>> Math.floor(x / stampSize)) & 1) * 255;
      codes.set([light, light, light, 255], (y * width + x) * 4);
    }
}

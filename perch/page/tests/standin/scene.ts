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
  private readonly sums: Float64Array;
  readonly width: number;
  readonly height: number;

  constructor(name: SceneName) {
    this.beauty = sample(name === 'still' ? 'still/beauty' : 'shot/beauty.0001');
    this.depth = sample(name === 'still' ? 'still/depth' : 'shot/depth.0001');
    this.width = this.beauty.width;
    this.height = this.beauty.height;
    this.sums = sumsOf(this.beauty);
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
    const source = this.beauty.codes;
    for (let y = 0, at = 0; y < height; y += 1)
      for (let x = 0; x < width; x += 1, at += 4) {
        const fullX = Math.floor(((x + 0.5) * this.width) / width);
        const fullY = Math.floor(((y + 0.5) * this.height) / height);
        const value = this.depthAt(fullX, fullY) / 65535;
        const distance = Math.max(Math.abs(look.point - value) - look.range, 0);
        if (kind === 'layer') paintGrey(codes, at, value);
        else if (kind === 'focus' && distance > 0) paintGrey(codes, at, distance);
        else if (kind === 'result' && distance > 0) this.blur(fullX, fullY, Math.round(distance * look.radius), codes, at);
        else
          for (let channel = 0; channel < 4; channel += 1)
            codes[at + channel] = source[(fullY * this.width + fullX) * 4 + channel] as number;
      }
    if (look.stamp !== null && kind === 'result') drawStamp(codes, width, look.stamp);
    return codes;
  }

  private blur(x: number, y: number, radius: number, codes: Uint8ClampedArray, at: number): void {
    const [left, right] = [Math.max(x - radius, 0), Math.min(x + radius + 1, this.width)];
    const [top, bottom] = [Math.max(y - radius, 0), Math.min(y + radius + 1, this.height)];
    const { sums } = this;
    const row = this.width + 1;
    const [a, b] = [(top * row + left) * 4, (top * row + right) * 4];
    const [c, d] = [(bottom * row + left) * 4, (bottom * row + right) * 4];
    const sum = (channel: number) =>
      (sums[d + channel] as number) - (sums[b + channel] as number) - (sums[c + channel] as number) + (sums[a + channel] as number);
    const alpha = sum(3);
    if (alpha <= 0) return;
    for (let channel = 0; channel < 3; channel += 1) codes[at + channel] = sum(channel) / alpha;
    codes[at + 3] = alpha / ((right - left) * (bottom - top));
  }
}

// For each pixel and channel the sum of all that lies above and left; colours times their alpha.
function sumsOf({ width, height, codes }: Samples): Float64Array {
  const row = (width + 1) * 4;
  const sums = new Float64Array(row * (height + 1));
  for (let y = 0; y < height; y += 1)
    for (let x = 0; x < width; x += 1) {
      const alpha = codes[(y * width + x) * 4 + 3] as number;
      for (let channel = 0; channel < 4; channel += 1) {
        const at = y * row + x * 4 + channel;
        const code = channel === 3 ? alpha : (codes[(y * width + x) * 4 + channel] as number) * alpha;
        sums[at + row + 4] = code + (sums[at + 4] as number) + (sums[at + row] as number) - (sums[at] as number);
      }
    }
  return sums;
}

function paintGrey(codes: Uint8ClampedArray, at: number, share: number): void {
  codes[at] = codes[at + 1] = codes[at + 2] = share * 255;
  codes[at + 3] = 255;
}

function drawStamp(codes: Uint8ClampedArray, width: number, stamp: number): void {
  for (let y = 0; y < stampSize; y += 1)
    for (let x = 0; x < 32 * stampSize; x += 1) {
      const light = ((stamp >>> Math.floor(x / stampSize)) & 1) * 255;
      codes.set([light, light, light, 255], (y * width + x) * 4);
    }
}

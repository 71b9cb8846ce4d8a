// As much of PNG as the sample pictures have: 8 or 16 bits, grey or RGBA, not interlaced.
import { inflateSync } from 'node:zlib';

export interface Samples {
  readonly width: number;
  readonly height: number;
  readonly channels: number;
  readonly codes: Uint16Array; // at the file's depth
}

export function readPng(file: Buffer): Samples {
  const width = file.readUInt32BE(16);
  const height = file.readUInt32BE(20);
  const bytesPerSample = file.readUInt8(24) / 8;
  const channels = { 0: 1, 2: 3, 4: 2, 6: 4 }[file.readUInt8(25)];
  if (!channels) throw new Error('a PNG of this colour type is not read here');
  const bytes = unfiltered(inflateSync(dataOf(file)), width * channels * bytesPerSample, height, channels * bytesPerSample);
  const codes = Uint16Array.from({ length: width * height * channels }, (_, i) =>
    bytesPerSample === 1 ? (bytes[i] as number) : ((bytes[2 * i] as number) << 8) | (bytes[2 * i + 1] as number),
  );
  return { width, height, channels, codes };
}

function dataOf(file: Buffer): Buffer {
  const parts: Buffer[] = [];
  for (let at = 8; at < file.length; ) {
    const length = file.readUInt32BE(at);
    if (file.toString('latin1', at + 4, at + 8) === 'IDAT') parts.push(file.subarray(at + 8, at + 8 + length));
    at += length + 12;
  }
  return Buffer.concat(parts);
}

function unfiltered(data: Buffer, rowBytes: number, height: number, step: number): Uint8Array {
  const rows = new Uint8Array(rowBytes * height);
  for (let y = 0; y < height; y += 1) {
    const filter = data[y * (rowBytes + 1)];
    for (let i = 0; i < rowBytes; i += 1) {
      const at = y * rowBytes + i;
      const left = i >= step ? (rows[at - step] as number) : 0;
      const up = y > 0 ? (rows[at - rowBytes] as number) : 0;
      const corner = i >= step && y > 0 ? (rows[at - rowBytes - step] as number) : 0;
      const guess = [0, left, up, (left + up) >> 1, paeth(left, up, corner)][filter as number] as number;
      rows[at] = (data[y * (rowBytes + 1) + 1 + i] as number) + guess;
    }
  }
  return rows;
}

function paeth(left: number, up: number, corner: number): number {
  const guess = left + up - corner;
  const [a, b, c] = [Math.abs(guess - left), Math.abs(guess - up), Math.abs(guess - corner)];
  if (a <= b && a <= c) return left;
  return b <= c ? up : corner;
}

// What is on the canvas of the result, compared with what should be.
import type { Page } from 'playwright-core';
import type { Samples } from '../standin/png';

export interface Difference {
  readonly size: readonly [number, number];
  readonly sent: number; // pixels in which what the server sends differs
  readonly shown: number; // pixels in which the canvas differs
}

// A canvas keeps colours times alpha, so the expected picture is put onto one as well.
export async function difference(page: Page, expected: Samples): Promise<Difference> {
  if (expected.channels !== 4) throw new Error('a picture of red, green, blue and alpha is compared');
  const { width, height } = expected;
  const text = Buffer.from(Uint8Array.from(expected.codes)).toString('base64');
  return page.getByRole('img', { name: 'Result' }).evaluate(
    async (element, { width, height, text }) => {
      const codes = Uint8ClampedArray.from(atob(text), (character) => character.charCodeAt(0));
      const differing = (a: Uint8ClampedArray, b: Uint8ClampedArray) => {
        let count = Math.abs(a.length - b.length) / 4;
        for (let at = 0; at < Math.min(a.length, b.length); at += 4)
          count += [0, 1, 2, 3].some((channel) => a[at + channel] !== b[at + channel]) ? 1 : 0;
        return count;
      };
      const canvas = element as HTMLCanvasElement;
      const kept = (paint: (context: OffscreenCanvasRenderingContext2D) => void) => {
        const context = new OffscreenCanvas(width, height).getContext('2d', { willReadFrequently: true });
        if (!context) throw new Error('the browser gives no canvas');
        paint(context);
        return context.getImageData(0, 0, width, height).data;
      };
      const answer = await fetch(`/api/picture?serial=${canvas.dataset.shows}&size=full&kind=result&format=raw`);
      return {
        size: [canvas.width, canvas.height] as const,
        sent: differing(new Uint8ClampedArray(await answer.arrayBuffer()), codes),
        shown: differing(
          kept((context) => context.drawImage(canvas, 0, 0)),
          kept((context) => context.putImageData(new ImageData(codes, width), 0, 0)),
        ),
      };
    },
    { width, height, text },
  );
}

// How sharp a square of the picture is: the mean square of the steps from pixel to pixel.
export async function gradientEnergy(page: Page, x: number, y: number, half: number): Promise<number> {
  return page.getByRole('img', { name: 'Result' }).evaluate(
    (element, { x, y, half }) => {
      const side = 2 * half + 1;
      const context = new OffscreenCanvas(side, side).getContext('2d');
      if (!context) throw new Error('the browser gives no canvas');
      context.drawImage(element as HTMLCanvasElement, half - x, half - y);
      const { data } = context.getImageData(0, 0, side, side);
      let sum = 0;
      for (let row = 1; row < side; row += 1)
        for (let column = 1; column < side; column += 1) {
          const at = (row * side + column) * 4;
          const green = data[at + 1] as number;
          sum += (green - (data[at - 3] as number)) ** 2 + (green - (data[at + 1 - 4 * side] as number)) ** 2;
        }
      return sum / (side - 1) ** 2;
    },
    { x, y, half },
  );
}

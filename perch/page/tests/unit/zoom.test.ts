import assert from 'node:assert/strict';
import { test } from 'node:test';
import { boxOf, fitted, greatestScale, leastScale, panned, pixelAt, toPicture, zoomedAt } from '../../src/model/zoom';
import type { View } from '../../src/model/zoom';

const picture = { width: 1280, height: 720 };
const window = { width: 1000, height: 700 };

test('a fitted picture touches two sides and is centred', () => {
  assert.deepEqual(boxOf(fitted(picture, window), picture, window), { x: 0, y: 69, width: 1000, height: 562.5 });
  assert.deepEqual(boxOf(fitted(picture, { width: 2560, height: 720 }), picture, { width: 2560, height: 720 }), {
    x: 640, y: 0, width: 1280, height: 720,
  });
});

test('places of the window and of the picture answer each other', () => {
  const view = { scale: 2, centreX: 100, centreY: 50 };
  const place = toPicture(view, picture, window, { x: 500, y: 350 });
  assert.deepEqual(place, { x: 100, y: 50 });
});

for (const factor of [0.5, 1.1, 3]) {
  test(`zooming by ${factor} keeps the place under the pointer`, () => {
    const at = { x: 400, y: 300 };
    const view: View = { scale: 1, centreX: 640, centreY: 360 };
    const before = toPicture(view, picture, window, at);
    const after = toPicture(zoomedAt(view, picture, window, at, factor), picture, window, at);
    // Corners are held to whole pixels of the window.
    assert.ok(Math.abs(after.x - before.x) <= 1 / factor && Math.abs(after.y - before.y) <= 1 / factor);
  });
}

test('zoom has its limits', () => {
  const view = fitted(picture, window);
  const at = { x: 500, y: 350 };
  assert.equal(zoomedAt(view, picture, window, at, 1e9).scale, greatestScale);
  assert.equal(zoomedAt(view, picture, window, at, 1e-9).scale, leastScale);
});

test('the picture cannot be panned out of sight', () => {
  const view = panned({ scale: 1, centreX: 640, centreY: 360 }, picture, 5000, -5000);
  assert.deepEqual([view.centreX, view.centreY], [0, 720]);
});

test('panning moves by pixels of the window', () => {
  const view = panned({ scale: 2, centreX: 640, centreY: 360 }, picture, 20, 10);
  assert.deepEqual([view.centreX, view.centreY], [630, 355]);
});

test('there are pixels in the picture and none beside it', () => {
  assert.deepEqual(pixelAt({ x: 0, y: 719.99 }, picture), { x: 0, y: 719 });
  for (const beside of [{ x: -0.01, y: 0 }, { x: 1280, y: 0 }, { x: 0, y: 720 }]) assert.equal(pixelAt(beside, picture), null);
});

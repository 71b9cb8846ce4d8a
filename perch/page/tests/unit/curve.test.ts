import assert from 'node:assert/strict';
import { test } from 'node:test';
import { valueAt, withKey, withKind, withMovedKey, withValue, withoutKey } from '../../src/model/curve';
import type { Curve } from '../../src/model/session';

// What `perch curve` prints for these keys, in the few digits that tell single-precision numbers apart.
const printed: readonly { readonly curve: Curve; readonly first: number; readonly values: readonly number[] }[] = [
  {
    // --focal-point 1:20,7:70:smooth,12:33.3:hold,15:80:smooth,24:10:smooth
    curve: [
      { frame: 1, value: 20, key: 'linear' },
      { frame: 7, value: 70, key: 'smooth' },
      { frame: 12, value: 33.3, key: 'hold' },
      { frame: 15, value: 80, key: 'smooth' },
      { frame: 24, value: 10, key: 'smooth' },
    ],
    first: 1,
    values: [
      20, 29.49074, 40.37037, 51.25, 60.74074, 67.453705, 70, 67.3576, 60.6048, 51.5032, 41.8144, 33.3, 33.3, 33.3, 80,
      77.59945, 71.16598, 61.851852, 50.809326, 39.190674, 28.148148, 18.834019, 12.400549, 10, 10, 10,
    ],
  },
  {
    // --maximum-blur 3:5,6:9:hold,20:100,25:7
    curve: [
      { frame: 3, value: 5, key: 'linear' },
      { frame: 6, value: 9, key: 'hold' },
      { frame: 20, value: 100, key: 'linear' },
      { frame: 25, value: 7, key: 'linear' },
    ],
    first: 1,
    values: [5, 5, 5, 6.3333335, 7.6666665, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 100, 81.4, 62.8, 44.2, 25.6, 7, 7],
  },
];

for (const { curve, first, values } of printed)
  test(`values between keys are the host's: ${JSON.stringify(curve).slice(0, 60)}`, () => {
    values.forEach((expected, i) => {
      const frame = first + i;
      assert.equal(Math.fround(valueAt(curve, frame) as number), Math.fround(expected), `frame ${frame}`);
    });
  });

test('items change at their key', () => {
  const curve: Curve = [
    { frame: 1, value: 'Coarse', key: 'hold' },
    { frame: 9, value: 'Fine', key: 'hold' },
  ];
  assert.deepEqual([0, 1, 8, 9, 30].map((frame) => valueAt(curve, frame)), ['Coarse', 'Coarse', 'Coarse', 'Fine', 'Fine']);
});

test('points and colours move number by number', () => {
  const point: Curve = [
    { frame: 0, value: [0, 100], key: 'linear' },
    { frame: 10, value: [10, 0], key: 'linear' },
  ];
  assert.deepEqual(valueAt(point, 3), [3, 70]);
  const colour: Curve = [
    { frame: 0, value: '#000000', key: 'linear' },
    { frame: 2, value: '#ff0080', key: 'linear' },
  ];
  assert.equal(valueAt(colour, 1), '#800040');
});

test('a value without keys is for all frames', () => {
  assert.equal(valueAt([1, 2], 7).toString(), '1,2');
  assert.equal(withValue(40, 7, 50), 50);
});

const keys: Curve = [
  { frame: 1, value: 20, key: 'smooth' },
  { frame: 9, value: 70, key: 'linear' },
];

test('a new key stands in its place and is of the kind of the one before', () => {
  assert.deepEqual(withKey(keys, 5, 33), [keys[0], { frame: 5, value: 33, key: 'smooth' }, keys[1]]);
  assert.deepEqual(withKey(keys, 0, 33)[0], { frame: 0, value: 33, key: 'smooth' });
  assert.deepEqual(withKey(keys, 9, 33)[1], { frame: 9, value: 33, key: 'linear' });
});

test('a key moved onto another takes its place', () => {
  assert.deepEqual(withMovedKey(keys, 1, 9, 25), [{ frame: 9, value: 25, key: 'smooth' }]);
  assert.deepEqual(withMovedKey(keys, 1, 12, 25), [keys[1], { frame: 12, value: 25, key: 'smooth' }]);
});

test('a key can be taken away and change its kind', () => {
  assert.deepEqual(withoutKey(keys, 1), [keys[1]]);
  assert.equal(withoutKey([{ frame: 1, value: 20, key: 'hold' }], 1), 20);
  assert.deepEqual(withKind(keys, 9, 'hold'), [keys[0], { frame: 9, value: 70, key: 'hold' }]);
});

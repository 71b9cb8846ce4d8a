import assert from 'node:assert/strict';
import { test } from 'node:test';
import { colourText, coloursOf } from '../../src/model/colour';
import { bandOf, spanning } from '../../src/model/focus';
import { parsed, shown } from '../../src/model/number';
import { Playback } from '../../src/model/playback';

for (const [text, number] of [
  ['62', 62], [' 62.5 ', 62.5], ['62,5', 62.5], ['-3', -3], ['62+3', 65], ['10/4', 2.5], ['2*-3', -6], ['50 %', 50],
  ['', null], ['abc', null], ['1/0', null], ['1..2', null], ['--1', null],
] as const)
  test(`a field takes "${text}" as ${number}`, () => assert.equal(parsed(text), number));

test('numbers are shown with the digits of their parameter and without a minus at zero', () => {
  assert.equal(shown(62, 1), '62.0');
  assert.equal(shown(-0.04, 1), '0.0');
});

test('colours are read as the command line takes them', () => {
  assert.deepEqual(coloursOf('#FF8000'), [255, 128, 0]);
  assert.deepEqual(coloursOf('1,2,3,4'), [1, 2, 3, 4]);
  for (const text of ['', '#ff80', 'red', '1,2', '1,2,256']) assert.equal(coloursOf(text), null);
  assert.equal(colourText([255, 127.6, 0]), '#ff8000');
  assert.equal(colourText([1, 2, 3, 4]), '1,2,3,4');
  assert.equal(colourText([1, 2, 3, 255]), '#010203');
});

test('the sharp band lies around the focal point, mirrored where the layer is inverted', () => {
  assert.deepEqual(bandOf(50, 25, false), { from: 0.25, to: 0.75 });
  assert.deepEqual(bandOf(75, 25, true), { from: 0, to: 0.5 });
  assert.deepEqual(bandOf(0, 10, false), { from: 0, to: 0.1 });
});

test('near and far become a point between them and a range that reaches both', () => {
  assert.deepEqual(spanning([30, 50, 40]), { point: 40, range: 10 });
});

test('a playback shows the frame that is due and counts those it had to drop', () => {
  const loop = { first: 0, last: 9 };
  const playback = new Playback(10, 0, 0); // a frame each 100 ms
  assert.equal(playback.due(50, loop), null);
  assert.equal(playback.due(110, loop), 1);
  assert.equal(playback.due(450, loop), 4);
  assert.equal(playback.dropped, 2);
  assert.equal(playback.due(1000, loop), 0);
  assert.equal(playback.dropped, 7);
});

test('a playback stays within its loop', () => {
  const playback = new Playback(10, 0, 0);
  const loop = { first: 4, last: 6 };
  assert.deepEqual([100, 200, 300, 400].map((now) => playback.due(now, loop)), [5, 6, 4, 5]);
});

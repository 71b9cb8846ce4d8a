import assert from 'node:assert/strict';
import { test } from 'node:test';
import { History } from '../../src/model/history';

test('undo and redo walk through the states', () => {
  const history = new History(0);
  history.change(1);
  history.change(2);
  assert.equal(history.undo() && history.present, 1);
  assert.equal(history.undo() && history.present, 0);
  assert.equal(history.undo(), false);
  assert.equal(history.redo() && history.present, 1);
  assert.equal(history.redo() && history.present, 2);
  assert.equal(history.redo(), false);
});

test('the changes of one gesture are one step', () => {
  const history = new History(0);
  for (const value of [1, 2, 3]) history.change(value, 'drag');
  history.endGesture();
  history.change(4, 'drag');
  history.undo();
  assert.equal(history.present, 3);
  history.undo();
  assert.equal(history.present, 0);
});

test('a change after an undo leaves nothing to redo', () => {
  const history = new History(0);
  history.change(1);
  history.undo();
  history.change(2);
  assert.equal(history.canRedo, false);
  history.undo();
  assert.equal(history.present, 0);
});

test('the oldest states are forgotten', () => {
  const history = new History(0, 3);
  for (let value = 1; value <= 5; value += 1) history.change(value);
  while (history.undo());
  assert.equal(history.present, 2);
});

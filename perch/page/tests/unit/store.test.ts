import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Store } from '../../src/model/store';
import { Shot } from '../standin/shot';

const store = () => new Store(new Shot({}).session({ width: 1280, height: 720 }));

test('a value is set for all frames until the parameter has keys', () => {
  const shown = store();
  shown.setValue('Focal Point', 40);
  assert.equal(shown.curve('Focal Point'), 40);
  shown.toggleKey('Focal Point');
  shown.setFrame(11);
  shown.setValue('Focal Point', 60);
  assert.deepEqual(shown.curve('Focal Point'), [
    { frame: 1, value: 40, key: 'linear' },
    { frame: 11, value: 60, key: 'linear' },
  ]);
  shown.setFrame(6);
  assert.equal(shown.value('Focal Point'), 50);
});

test('keys of check boxes and popups hold', () => {
  const shown = store();
  shown.toggleKey('Blur Type');
  assert.deepEqual(shown.curve('Blur Type'), [{ frame: 1, value: 'Coarse', key: 'hold' }]);
});

test('the last key taken away leaves its value', () => {
  const shown = store();
  shown.setValue('Focal Point', 40);
  shown.toggleKey('Focal Point');
  shown.toggleKey('Focal Point');
  assert.equal(shown.curve('Focal Point'), 40);
});

test('a look keeps its values while the other is shown', () => {
  const shown = store();
  shown.setValue('Focal Point', 40);
  shown.showLook('B');
  assert.equal(shown.value('Focal Point'), 0);
  shown.setValue('Focal Point', 80);
  shown.showLook('A');
  assert.equal(shown.value('Focal Point'), 40);
  shown.copyToOtherLook();
  shown.showLook('B');
  assert.equal(shown.value('Focal Point'), 40);
});

test('undo leaves the frame and tells of its change', () => {
  const shown = store();
  let changes = 0;
  shown.addEventListener('change', () => (changes += 1));
  shown.setValue('Focal Point', 40);
  shown.setFrame(5);
  shown.undo();
  assert.deepEqual([shown.value('Focal Point'), shown.frame, changes], [0, 5, 3]);
});

test('a value that is there already is no change', () => {
  const shown = store();
  shown.setValue('Focal Point', 0);
  assert.equal(shown.canUndo, false);
});

test('reset brings the default back', () => {
  const shown = store();
  shown.setValue('Maximum Blur', 45);
  assert.equal(shown.isDefault('Maximum Blur'), false);
  shown.reset('Maximum Blur');
  assert.equal(shown.value('Maximum Blur'), 10);
  assert.equal(shown.isDefault('Maximum Blur'), true);
});

test('frames that the shot does not have cannot be shown', () => {
  const shown = store();
  shown.setFrame(99);
  assert.equal(shown.frame, 1);
  shown.setPlace(99);
  assert.equal(shown.frame, 24);
});

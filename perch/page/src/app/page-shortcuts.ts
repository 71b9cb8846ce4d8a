// What each key of the page does.
import type { PerchView } from './perch-view';
import type { Shortcut } from './shortcuts';

export function pageShortcuts(view: PerchView): readonly Shortcut[] {
  const { store, viewing } = view;
  const original = (isOriginalHeld: boolean) => () => viewing.set({ isOriginalHeld });
  const toggled = (comparison: 'wipe' | 'side') => () =>
    viewing.set({ comparison: viewing.comparison === comparison ? 'result' : comparison });
  return [
    { key: 'z', control: true, shift: false, down: () => store.undo() },
    { key: 'z', control: true, shift: true, down: () => store.redo() },
    { key: 'y', control: true, down: () => store.redo() },
    { key: 'o', down: original(true), up: original(false) },
    { key: 'w', down: toggled('wipe') },
    { key: 'd', down: toggled('side') },
    { key: 'f', down: () => viewing.fit() },
    { key: '1', down: () => viewing.showPixels() },
    { key: 'x', down: () => store.showLook(store.look === 'A' ? 'B' : 'A') },
    { key: ',', down: () => store.setPlace(store.place - 1) },
    { key: '.', down: () => store.setPlace(store.place + 1) },
    { key: ' ', down: () => view.timeLine.togglePlay() },
  ];
}

// Keys of the whole page. They leave fields that take text alone, and the space bar to what it presses.

export interface Shortcut {
  readonly key: string; // as KeyboardEvent.key, in small letters
  readonly control?: boolean;
  readonly shift?: boolean;
  readonly down: () => void;
  readonly up?: () => void;
}

export function listenForShortcuts(shortcuts: readonly Shortcut[]): void {
  const held = new Map<string, Shortcut>();
  window.addEventListener('keydown', (event) => {
    const target = event.composedPath()[0] as HTMLElement;
    const hasControl = event.ctrlKey || event.metaKey;
    if (event.defaultPrevented || event.repeat || (takesText(target) && !hasControl)) return;
    if (event.key === ' ' && target !== document.body && target.getAttribute('aria-label') !== 'Picture') return;
    const shortcut = shortcuts.find(
      ({ key, control = false, shift }) =>
        key === event.key.toLowerCase() && control === hasControl && (shift ?? event.shiftKey) === event.shiftKey,
    );
    if (!shortcut) return;
    event.preventDefault();
    shortcut.down();
    if (shortcut.up) held.set(shortcut.key, shortcut);
  });
  const release = (key: string) => {
    held.get(key)?.up?.();
    held.delete(key);
  };
  window.addEventListener('keyup', (event) => release(event.key.toLowerCase()));
  window.addEventListener('blur', () => [...held.keys()].forEach(release));
}

function takesText(element: HTMLElement): boolean {
  return (
    (element instanceof HTMLInputElement && element.type === 'text') ||
    element instanceof HTMLSelectElement ||
    element instanceof HTMLTextAreaElement
  );
}

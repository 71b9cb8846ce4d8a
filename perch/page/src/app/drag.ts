// Follows the pointer wherever it goes until it is let go or taken away.
export function drag(move: (event: PointerEvent) => void, end: () => void): void {
  const dragging = new AbortController();
  const { signal } = dragging;
  const finish = () => {
    dragging.abort();
    end();
  };
  window.addEventListener('pointermove', move, { signal });
  window.addEventListener('pointerup', finish, { signal });
  window.addEventListener('pointercancel', finish, { signal });
}

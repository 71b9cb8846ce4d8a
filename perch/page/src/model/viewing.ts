// How the picture is looked at; no part of what is made, so undo leaves it alone.
import { boxOf, fitted, panned, zoomedAt } from './zoom';
import type { Box, Place, Size, View } from './zoom';

export type Comparison = 'result' | 'wipe' | 'side' | 'overlay';
export type Behind = 'checkerboard' | 'black' | 'white';

export class Viewing extends EventTarget {
  comparison: Comparison = 'result';
  behind: Behind = 'checkerboard';
  wipe = 0.5;
  isOriginalHeld = false;
  window: Size = { width: 1, height: 1 };
  private chosen: View | null = null; // null: fitted

  constructor(readonly picture: Size) {
    super();
  }

  get view(): View {
    return this.chosen ?? fitted(this.picture, this.window);
  }

  get isFitted(): boolean {
    return this.chosen === null;
  }

  get box(): Box {
    return boxOf(this.view, this.picture, this.window);
  }

  // The size at which the picture is shown, in pixels of the screen, and never larger than it is.
  get shownSize(): Size {
    const scale = Math.min(this.view.scale * devicePixelRatio, 1);
    return {
      width: Math.max(Math.round(this.picture.width * scale), 1),
      height: Math.max(Math.round(this.picture.height * scale), 1),
    };
  }

  set(change: Partial<Pick<Viewing, 'comparison' | 'behind' | 'wipe' | 'isOriginalHeld' | 'window'>>): void {
    Object.assign(this, change);
    this.tell();
  }

  fit(): void {
    this.chosen = null;
    this.tell();
  }

  showPixels(): void {
    this.zoom(1 / devicePixelRatio / this.view.scale);
  }

  zoom(factor: number, at: Place = { x: this.window.width / 2, y: this.window.height / 2 }): void {
    this.chosen = zoomedAt(this.view, this.picture, this.window, at, factor);
    this.tell();
  }

  pan(byX: number, byY: number): void {
    this.chosen = panned(this.view, this.picture, byX, byY);
    this.tell();
  }

  private tell(): void {
    this.dispatchEvent(new Event('change'));
  }
}

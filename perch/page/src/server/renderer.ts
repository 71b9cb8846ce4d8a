// Keeps the picture up with the values. The newest values win; of those in between only what there is time
// for is rendered:
//
//   change ---> send the state ---> preview at the size shown ---> paint
//     ^                                                             |
//     |   newer values meanwhile: at once again <-------------------+
//     |                                                             | none for restTime
//     +--- newer values end it --- full picture, without loss <-----+ then: settled
import type { PictureKind, State } from '../model/session';
import type { Store } from '../model/store';
import { ApiError } from './api';
import type { Api, Picture } from './api';

export interface RendererView {
  // The kinds of picture that are looked at now, and the size they are looked at.
  wishes(): { readonly kinds: readonly PictureKind[]; readonly width: number; readonly height: number };
  // Draws the picture; comes back when it is painted.
  paint(picture: Picture, changedAt: number): Promise<void> | void;
  moves(): void;
  settles(): void;
  answers(state: State): void;
  fails(error: ApiError): void;
}

const restTime = 140; // ms without a change until the full picture is worth its time
const mostRefusals = 5;

export class Renderer {
  serial: number;
  private newest = 1;
  private done = 0;
  private changedAt = performance.now();
  private isRunning = false;
  private full: AbortController | null = null;
  private wake: (() => void) | null = null;
  private painting: Promise<void> | void = undefined;
  private refusals = 0;
  private previewed = new Set<() => void>();

  constructor(private readonly api: Api, private readonly store: Store, private readonly view: RendererView) {
    this.serial = store.session.state.serial;
    store.addEventListener('change', () => this.changed());
  }

  // The values, the frame, or what is looked at have changed.
  changed(): void {
    this.newest += 1;
    this.changedAt = performance.now();
    this.view.moves();
    this.full?.abort();
    this.wake?.();
    if (!this.isRunning) void this.run();
  }

  // Comes back when a picture of the frame set last is painted.
  nextPicture(): Promise<void> {
    return new Promise((done) => this.previewed.add(done));
  }

  private async run(): Promise<void> {
    this.isRunning = true;
    while (this.done < this.newest) await this.step(this.newest);
    this.isRunning = false;
  }

  private async step(target: number): Promise<void> {
    try {
      await this.preview();
      if (this.newest !== target || !(await this.rests())) return;
      await this.fullPictures();
      if (this.newest !== target) return;
      this.done = target;
      this.refusals = 0;
      this.view.settles();
    } catch (error) {
      if (this.newest !== target) return;
      if (error instanceof ApiError && error.status === 409 && ++this.refusals < mostRefusals) return;
      this.done = target;
      this.view.fails(error instanceof ApiError ? error : new ApiError(0, String(error)));
    } finally {
      if (this.done === target) this.tellPreviewed();
    }
  }

  private async preview(): Promise<void> {
    const changedAt = this.changedAt;
    await this.send();
    const { kinds, width, height } = this.view.wishes();
    for (const kind of kinds) {
      const wish = { serial: this.serial, kind, size: { width, height } };
      const picture = await this.api.picture(wish, new AbortController().signal);
      await this.painting;
      this.painting = this.view.paint(picture, changedAt);
    }
    this.tellPreviewed();
  }

  private async fullPictures(): Promise<void> {
    this.full = new AbortController();
    const { signal } = this.full;
    const { kinds } = this.view.wishes();
    for (const kind of kinds) {
      const picture = await this.api.picture({ serial: this.serial, kind, size: 'full' }, signal);
      await this.painting;
      if (signal.aborted) return;
      await this.view.paint(picture, this.changedAt);
    }
  }

  private async send(): Promise<void> {
    for (;;) {
      const serial = this.serial + 1;
      const state = await this.api.send(serial, this.store.frame, this.store.curves);
      this.serial = Math.max(state.serial, serial);
      if (state.serial !== serial) continue; // another page has sent newer values
      this.view.answers(state);
      return;
    }
  }

  // Whether nothing changes for the rest time.
  private rests(): Promise<boolean> {
    return new Promise((done) => {
      const timer = setTimeout(() => finish(true), restTime);
      const finish = (isAtRest: boolean) => {
        clearTimeout(timer);
        this.wake = null;
        done(isAtRest);
      };
      this.wake = () => finish(false);
    });
  }

  private tellPreviewed(): void {
    const waiting = [...this.previewed];
    this.previewed.clear();
    for (const done of waiting) done();
  }
}

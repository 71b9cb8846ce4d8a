// Keeps the picture up with the values. The newest values win; of those in between only what there is time
// for is rendered:
//
//   change ---> the state is sent, and answered with a preview at the size shown ---> paint
//     ^                                                      |
//     |   newer values meanwhile: at once again <------------+
//     |                                                      | none for restTime
//     +--- newer values end it --- full picture, loss-free <-+ then: settled
//
// While one picture comes over, is decoded and painted, the server works at the next.
import type { PictureKind, State } from '../model/session';
import type { Store } from '../model/store';
import { ApiError } from './api';
import type { Api, Picture, PreviewWish } from './api';

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
  private painting: Promise<void> = Promise.resolve();
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
      if (error instanceof ApiError && error.status === 409 && ++this.refusals < mostRefusals) return this.catchUp();
      if (this.newest !== target) return;
      this.done = target;
      this.view.fails(error instanceof ApiError ? error : new ApiError(0, String(error)));
    } finally {
      if (this.done === target) this.tellPreviewed();
    }
  }

  private async preview(): Promise<void> {
    const { kinds, width, height } = this.view.wishes();
    for (const kind of kinds) {
      const changedAt = this.changedAt;
      const { picture } = await this.send({ kind, width, height });
      await this.painting;
      this.painting = picture.then((picture) => this.view.paint(picture, changedAt));
      this.painting.catch(() => {}); // thrown to who waits for it
    }
    this.tellPreviewed();
  }

  private async fullPictures(): Promise<void> {
    this.full = new AbortController();
    const { signal } = this.full;
    const { kinds } = this.view.wishes();
    for (const kind of kinds) {
      const picture = await this.api.picture({ serial: this.serial, kind }, signal);
      await this.painting;
      if (signal.aborted) return;
      await this.view.paint(picture, this.changedAt);
    }
    this.view.answers(await this.api.state());
  }

  private async send(wish: PreviewWish): Promise<{ picture: Promise<Picture> }> {
    const serial = this.serial + 1;
    try {
      return await this.api.preview(serial, this.store.frame, this.store.curves, wish);
    } finally {
      this.serial = serial;
    }
  }

  // Another page may have set values, and counted on.
  private async catchUp(): Promise<void> {
    this.serial = Math.max(this.serial, (await this.api.state()).serial);
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

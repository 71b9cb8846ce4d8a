// Plays the shot: shows each frame that is due as soon as the one before is there.
import { Playback } from '../model/playback';
import type { Loop } from '../model/playback';
import type { Store } from '../model/store';

export class Player {
  isPlaying = false;
  dropped = 0;

  constructor(
    private readonly store: Store,
    private readonly nextPicture: () => Promise<void>,
    private readonly loop: () => Loop,
    private readonly changed: () => void,
  ) {}

  toggle(): void {
    if (this.isPlaying) this.stop();
    else if (this.store.frames.length > 1) void this.play();
  }

  stop(): void {
    this.isPlaying = false;
    this.changed();
  }

  private async play(): Promise<void> {
    this.isPlaying = true;
    this.dropped = 0;
    this.changed();
    const playback = new Playback(this.store.session.picture.rate, this.store.place, performance.now());
    while (this.isPlaying) {
      const place = playback.due(performance.now(), this.loop());
      if (place === null || place === this.store.place) {
        await new Promise((done) => requestAnimationFrame(done));
        continue;
      }
      const shown = this.nextPicture();
      this.store.setPlace(place);
      await shown;
      this.dropped = playback.dropped;
      this.changed();
    }
  }
}

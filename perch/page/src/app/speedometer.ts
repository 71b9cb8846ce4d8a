// How fast pictures come, over the last second.
import type { Picture } from '../server/api';
import type { Speed } from './status-bar';

const step = 250; // ms between two figures, which are to be read

export class Speedometer {
  private readonly painted: number[] = [];
  private toldAt = -step;

  // A picture that was drawn in `paint` milliseconds and whose values were changed at `changedAt`. Null where the
  // last figures are so new that they shall stay.
  take(picture: Picture, changedAt: number, paint: number): Speed | null {
    const now = performance.now();
    this.painted.push(now);
    while ((this.painted[0] ?? now) < now - 1000) this.painted.shift();
    if (now < this.toldAt + step) return null;
    this.toldAt = now;
    return { ...picture.times, paint, perSecond: this.painted.length, latency: now - changedAt };
  }
}

// How fast pictures come, over the last second.
import type { Picture } from '../server/api';
import type { Speed } from './status-bar';

export class Speedometer {
  private readonly painted: number[] = [];

  // A picture that was drawn in `paint` milliseconds and whose values were changed at `changedAt`.
  take(picture: Picture, changedAt: number, paint: number): Speed {
    const now = performance.now();
    this.painted.push(now);
    while ((this.painted[0] ?? now) < now - 1000) this.painted.shift();
    return { ...picture.times, paint, perSecond: this.painted.length, latency: now - changedAt };
  }
}

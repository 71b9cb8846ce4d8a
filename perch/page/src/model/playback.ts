// Which frame is due while the shot plays. Frames that could not be shown in time are dropped and counted.

export interface Loop {
  readonly first: number; // places among the shot's frames
  readonly last: number;
}

export class Playback {
  dropped = 0;
  private ticks = 0;

  // Starts at `place` at `now` milliseconds.
  constructor(private readonly rate: number, private readonly start: number, private readonly now: number) {}

  // The place due at `now`, or null while the one shown is still the right one.
  due(now: number, loop: Loop): number | null {
    const ticks = Math.floor(((now - this.now) * this.rate) / 1000);
    if (ticks <= this.ticks) return null;
    this.dropped += ticks - this.ticks - 1;
    this.ticks = ticks;
    const length = loop.last - loop.first + 1;
    const start = this.start >= loop.first && this.start <= loop.last ? this.start : loop.first;
    return loop.first + ((start - loop.first + ticks) % length);
  }
}

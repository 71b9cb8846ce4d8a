// States that undo and redo walk through. The changes of one gesture, such as a drag, are one step.
//
//   past: s0 s1 s2   present: s3   future: s4
//         <- undo                  redo ->

export class History<T> {
  private past: T[] = [];
  private future: T[] = [];
  private gesture: string | null = null;

  constructor(public present: T, private readonly longest = 500) {}

  get canUndo(): boolean {
    return this.past.length > 0;
  }

  get canRedo(): boolean {
    return this.future.length > 0;
  }

  // Changes with the same gesture replace one another until endGesture().
  change(next: T, gesture: string | null = null): void {
    const goesOn = gesture !== null && gesture === this.gesture;
    if (!goesOn) {
      this.past.push(this.present);
      if (this.past.length > this.longest) this.past.shift();
    }
    this.future = [];
    this.gesture = gesture;
    this.present = next;
  }

  endGesture(): void {
    this.gesture = null;
  }

  undo(): boolean {
    return this.step(this.past, this.future);
  }

  redo(): boolean {
    return this.step(this.future, this.past);
  }

  private step(from: T[], to: T[]): boolean {
    const next = from.pop();
    if (next === undefined) return false;
    to.push(this.present);
    this.present = next;
    this.gesture = null;
    return true;
  }
}

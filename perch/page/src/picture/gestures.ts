// What the pointers on the picture mean: a click, a drag that pans, a drag with Shift over near and far, a pinch
// of two fingers, the wheel.
import type { Place } from '../model/zoom';

export interface GestureTaker {
  hover(at: Place | null): void;
  click(at: Place): void;
  pan(byX: number, byY: number): void;
  zoom(factor: number, at: Place): void;
  span(from: Place, to: Place, isDone: boolean): void;
}

const clickDistance = 4; // pixels that a click may wander

export class Gestures {
  private readonly pointers = new Map<number, Place>();
  private start: Place | null = null;
  private kind: 'click' | 'pan' | 'span' | 'pinch' | null = null;

  constructor(private readonly element: HTMLElement, private readonly taker: GestureTaker) {
    element.addEventListener('pointerdown', (event) => this.down(event));
    element.addEventListener('pointermove', (event) => this.move(event));
    element.addEventListener('pointerup', (event) => this.up(event, true));
    element.addEventListener('pointercancel', (event) => this.up(event, false));
    element.addEventListener('pointerleave', () => taker.hover(null));
    element.addEventListener('wheel', (event) => this.wheel(event), { passive: false });
  }

  private placeOf(event: MouseEvent): Place {
    const { x, y } = this.element.getBoundingClientRect();
    return { x: event.clientX - x, y: event.clientY - y };
  }

  private down(event: PointerEvent): void {
    if (event.defaultPrevented || event.button > 1) return;
    if (event.button === 1) event.preventDefault();
    const at = this.placeOf(event);
    this.element.setPointerCapture(event.pointerId);
    this.pointers.set(event.pointerId, at);
    this.start = at;
    if (this.pointers.size > 1) this.kind = 'pinch';
    else if (event.button === 1) this.kind = 'pan';
    else this.kind = event.shiftKey ? 'span' : 'click';
  }

  private move(event: PointerEvent): void {
    const at = this.placeOf(event);
    const before = this.pointers.get(event.pointerId);
    this.taker.hover(at);
    if (!before || !this.start) return;
    if (this.kind === 'click' && distance(at, this.start) > clickDistance) this.kind = 'pan';
    if (this.kind === 'span') this.taker.span(this.start, at, false);
    if (this.kind === 'pan') this.taker.pan(at.x - before.x, at.y - before.y);
    if (this.kind === 'pinch') this.pinch(event.pointerId, before, at);
    if (this.kind !== 'click') this.pointers.set(event.pointerId, at);
  }

  private pinch(pointer: number, before: Place, at: Place): void {
    const other = [...this.pointers].find(([id]) => id !== pointer)?.[1];
    if (!other) return;
    this.taker.pan((at.x - before.x) / 2, (at.y - before.y) / 2);
    const middle = { x: (at.x + other.x) / 2, y: (at.y + other.y) / 2 };
    this.taker.zoom(Math.max(distance(at, other), 1) / Math.max(distance(before, other), 1), middle);
  }

  private up(event: PointerEvent, isDone: boolean): void {
    const at = this.placeOf(event);
    if (!this.pointers.delete(event.pointerId)) return;
    if (this.start && isDone && this.kind === 'click') this.taker.click(at);
    if (this.start && this.kind === 'span') this.taker.span(this.start, at, isDone);
    if (this.pointers.size === 0) this.kind = null;
  }

  private wheel(event: WheelEvent): void {
    event.preventDefault();
    const lines = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? 16 : 1;
    const speed = event.ctrlKey ? 0.01 : 0.0016; // a pinch on a touch pad comes as a wheel with Ctrl
    if (event.shiftKey) this.taker.pan(-event.deltaY * lines, 0);
    else this.taker.zoom(Math.exp(-event.deltaY * lines * speed), this.placeOf(event));
  }
}

function distance(a: Place, b: Place): number {
  return Math.hypot(a.x - b.x, a.y - b.y);
}

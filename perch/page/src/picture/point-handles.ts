// The effect's points on the picture, to be dragged or moved by keys.
import { css, html } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import { Follow } from '../app/follow';
import { place } from '../app/place';
import { StoreElement } from '../app/store-element';
import { shared } from '../app/theme';
import type { Viewing } from '../model/viewing';

@customElement('point-handles')
export class PointHandles extends StoreElement {
  static override styles = [
    shared,
    css`
      :host {
        display: contents;
      }
      button {
        position: absolute;
        width: 18px;
        height: 18px;
        margin: -9px;
        padding: 0;
        border: 2px solid #fff;
        border-radius: 50%;
        background: radial-gradient(#fff 2px, #0006 2.5px);
        filter: drop-shadow(0 0 1px #000);
        cursor: move;
        touch-action: none;
      }
    `,
  ];

  @property({ attribute: false }) viewing!: Viewing;

  constructor() {
    super();
    new Follow(this, () => this.viewing);
  }

  protected override render() {
    const points = this.store.session.parameters.filter(({ type, visible }) => type === 'point' && visible);
    return points.map(({ key, name, enabled }) => {
      const value = this.store.value(key);
      if (!Array.isArray(value)) return null;
      const [x, y] = value as [number, number];
      const { box, view } = this.viewing;
      return html`<button
        aria-label="${name} on the picture, at ${x.toFixed(0)}, ${y.toFixed(0)}"
        title=${name}
        ?disabled=${!enabled}
        ${place({ left: `${box.x + x * view.scale}px`, top: `${box.y + y * view.scale}px` })}
        @pointerdown=${(event: PointerEvent) => this.grab(event, key)}
        @keydown=${(event: KeyboardEvent) => this.press(event, key)}
      ></button>`;
    });
  }

  private moveBy(key: string, byX: number, byY: number, gesture: string | null): void {
    const [x = 0, y = 0, ...rest] = this.store.value(key) as readonly number[];
    this.store.setValue(key, [x + byX, y + byY, ...rest], gesture);
  }

  private grab(event: PointerEvent, key: string): void {
    event.preventDefault();
    event.stopPropagation();
    const handle = event.currentTarget as HTMLElement;
    handle.focus();
    handle.setPointerCapture(event.pointerId);
    const gesture = `${key} on the picture ${event.timeStamp}`;
    const move = ({ movementX, movementY }: PointerEvent) =>
      this.moveBy(key, movementX / this.viewing.view.scale, movementY / this.viewing.view.scale, gesture);
    handle.addEventListener('pointermove', move);
    const end = () => {
      handle.removeEventListener('pointermove', move);
      this.store.endGesture();
    };
    handle.addEventListener('lostpointercapture', end, { once: true });
  }

  private press(event: KeyboardEvent, key: string): void {
    const step = event.shiftKey ? 10 : 1;
    const by = { ArrowLeft: [-step, 0], ArrowRight: [step, 0], ArrowUp: [0, -step], ArrowDown: [0, step] }[event.key];
    if (!by) return;
    event.preventDefault();
    event.stopPropagation();
    this.moveBy(key, by[0] as number, by[1] as number, null);
  }
}

// A dial for degrees: 0 points up, clockwise is more. It turns on past a whole turn.
import { css, html, svg } from 'lit';
import { customElement } from 'lit/decorators.js';
import { shared } from '../app/theme';
import { rounded, shown } from '../model/number';
import { besideFieldStyle } from './beside-field-style';
import { Control } from './control';
import './number-field';
import type { NumberField } from './number-field';

@customElement('angle-control')
export class AngleControl extends Control {
  static override styles = [
    shared,
    besideFieldStyle,
    css`
      .dial {
        width: 34px;
        height: 34px;
        border-radius: 50%;
        touch-action: none;
      }
      circle {
        fill: var(--well);
        stroke: var(--line);
      }
      line {
        stroke: var(--accent);
        stroke-width: 2;
        stroke-linecap: round;
      }
    `,
  ];

  protected override render() {
    const { name, enabled, unit, hint } = this.parameter;
    const radians = (this.number * Math.PI) / 180;
    return html`<div
        class="dial"
        role="slider"
        tabindex=${enabled ? 0 : -1}
        aria-label=${name}
        aria-description=${hint ?? ''}
        aria-disabled=${!enabled}
        aria-valuenow=${this.number}
        aria-valuetext="${shown(this.number, this.precision)} degrees"
        @pointerdown=${this.grab}
        @keydown=${this.key}
      >
        ${svg`<svg width="34" height="34" viewBox="-17 -17 34 34" aria-hidden="true"><circle r="16"></circle>
          <line x2=${Math.sin(radians) * 13} y2=${-Math.cos(radians) * 13}></line></svg>`}
      </div>
      <number-field
        name=${name}
        unit=${unit || '°'}
        .value=${this.number}
        .minimum=${this.parameter.minimum ?? -Infinity}
        .maximum=${this.parameter.maximum ?? Infinity}
        .precision=${Math.max(this.precision, 1)}
        ?disabled=${!enabled}
        @value=${(event: Event) => this.settle((event.target as NumberField).value)}
      ></number-field>`;
  }

  private grab(event: PointerEvent): void {
    if (!this.parameter.enabled) return;
    const dial = event.currentTarget as HTMLElement;
    dial.setPointerCapture(event.pointerId);
    let last = angleAt(dial, event);
    let angle = this.number;
    const turn = (moved: PointerEvent) => {
      const now = angleAt(dial, moved);
      angle += ((now - last + 540) % 360) - 180;
      last = now;
      const step = moved.shiftKey ? 15 : 1;
      this.move(Math.round(angle / step) * step);
    };
    const release = () => {
      dial.removeEventListener('pointermove', turn);
      this.settle(this.number);
    };
    dial.addEventListener('pointermove', turn);
    dial.addEventListener('pointerup', release, { once: true });
    dial.addEventListener('pointercancel', release, { once: true });
  }

  private key(event: KeyboardEvent): void {
    const steps = { ArrowUp: 1, ArrowRight: 1, ArrowDown: -1, ArrowLeft: -1, PageUp: 15, PageDown: -15 };
    const step = steps[event.key as keyof typeof steps];
    if (!step || !this.parameter.enabled) return;
    event.preventDefault();
    this.settle(rounded(this.number + step * (event.shiftKey ? 10 : 1), 4));
  }
}

function angleAt(dial: HTMLElement, event: PointerEvent): number {
  const { x, y, width, height } = dial.getBoundingClientRect();
  return (Math.atan2(event.clientX - x - width / 2, y + height / 2 - event.clientY) * 180) / Math.PI;
}
